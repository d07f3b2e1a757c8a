#pragma once

#include "src/model/pageitem.h"

#include <QString>

#include <optional>
#include <vector>

/// Finds labels by their number or text.
namespace LabelSearch {

/// A label and its page.
struct TPlace
{
    int page_id = 0;
    int item_id = 0;
};

/// Where a search starts: behind a label, or before the first label of a page.
struct TStart
{
    int page_id = 0; ///< an unknown page: the search covers all pages from the first or the last
    std::optional<int> item_id; ///< empty: before the first label of the page
};

enum class TDirection { Forward, Backward };

/// Finds the next label that has this number or whose text contains this text in upper or lower
/// case. At the end of the document it continues at the other end. Skips pages without an image,
/// which do not show their labels.
std::optional<TPlace> Find(const std::vector<const TPageItem*>& pages, const QString& text,
                           const TStart& start, TDirection direction);

} // namespace LabelSearch
