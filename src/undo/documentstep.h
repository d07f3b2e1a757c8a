#pragma once

#include "src/model/datachange.h"
#include "src/model/namedpage.h"

#include <QColor>

#include <optional>
#include <utility>
#include <vector>

/// The page list: the order and the names of pages belong to the document, but the model does not
/// know them.
using TPageRows = std::vector<TNamedPage>;

/// How all labels of the document look.
struct TLabelLook
{
    int size = 0; ///< edge of a label in page-image pixels
    QColor color;
};

inline bool operator==(const TLabelLook& left, const TLabelLook& right)
{
    return left.size == right.size && left.color == right.color;
}

inline bool operator!=(const TLabelLook& left, const TLabelLook& right)
{
    return !(left == right);
}

/// What belongs to the document besides the pages and labels of the model.
struct TDocumentFacts
{
    TPageRows page_rows;
    TLabelLook look;
};

/// A difference between two page lists, no larger than it has to be: rows that keep their order
/// stay, all others are taken out here and put in there.
class TRowsChange
{
public:
    TRowsChange() = default;
    TRowsChange(const TPageRows& before, const TPageRows& after);

    bool Is_Empty() const { return d_here.empty() && d_there.empty(); }
    /// Ids of the pages whose rows come, go, move or change.
    std::vector<int> Touched_Pages() const;
    /// Turns the one list into the other: after into before the first time, and back the second.
    /// Rows that are not there are passed over.
    void Swap(TPageRows* rows);

private:
    /// Rows with their places in a list that has them, from the top.
    using TPlacedRows = std::vector<std::pair<int, TNamedPage>>;

    TPlacedRows d_here;  ///< only in the list as it is now
    TPlacedRows d_there; ///< only in the other one
};

/// One step of the work, as a value: how two states of the document differ.
class TDocumentStep
{
public:
    /// Pages and labels; the model notes here what is changed.
    TDataChange data;

    /// Note how the rest has changed since the step began, or since it was noted last.
    void Note_Rows(const TPageRows& before, const TPageRows& after);
    void Note_Look(const TLabelLook& before, const TLabelLook& after);

    /// Whether the document is as it was before the step, and looks like that.
    bool Is_Void(const TData& model, const TLabelLook& look) const;
    /// Ids of the pages that the step changed; none when it only changed how all of them look.
    std::vector<int> Touched_Pages() const;
    /// Exchanges the two states: the document's and the other one.
    void Swap(TData* model, TDocumentFacts* facts);

private:
    TRowsChange d_rows;
    std::optional<TLabelLook> d_look; ///< the other one; empty when both are the same
};
