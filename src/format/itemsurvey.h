#pragma once

#include "src/format/pagetexts.h"
#include "src/model/pageitem.h"

#include <QByteArray>
#include <QString>

#include <vector>

/// Something in a file that a reader would drop, change, refuse or ignore.
struct TProjectDefect
{
    qint64 offset = 0; ///< in bytes, from the beginning of the surveyed data
    QString what;
    int page = 0;             ///< number of the page from 1; 0 if it concerns the whole file
    bool is_harmless = false; ///< whether the meaning is clear in spite of it
};

/// Everything that can be read of a label document, and all its defects.
struct TItemSurvey
{
    std::vector<TDataItem> items;
    TPageTexts texts; ///< from the root, if its tag is readable
    /// Each has the offset of the label's element, or 0 if it is uncertain or the defect concerns
    /// the whole document.
    std::vector<TProjectDefect> defects;
};

namespace ItemSurvey {

/// Reads all readable labels of a label document, and reports its defects.
///
/// For a document without defects, ItemList::Read returns the same labels. In a document that is
/// not well-formed, every label whose element is well-formed is read. A label that repeats the id
/// of an earlier one gets a free id. A number that cannot be parsed is read as 0, as in
/// ItemList::Read. Time and memory are proportional to the size of the document.
TItemSurvey Survey(const QByteArray& document);

} // namespace ItemSurvey
