#pragma once

#include "src/datachange.h"

#include <QColor>
#include <QString>

#include <optional>
#include <utility>
#include <vector>

/// A page as the page list has it. The order and the names of pages belong to the document, but
/// the model does not know them.
struct TPageRow
{
    int page_id = 0;
    QString name;
};

inline bool operator==(const TPageRow& left, const TPageRow& right)
{
    return left.page_id == right.page_id && left.name == right.name;
}

inline bool operator!=(const TPageRow& left, const TPageRow& right)
{
    return !(left == right);
}

using TPageRows = std::vector<TPageRow>;

/// How all labels of the document look.
struct TAppearance
{
    int label_size = 0; ///< in page-image pixels
    QColor label_color;
};

inline bool operator==(const TAppearance& left, const TAppearance& right)
{
    return left.label_size == right.label_size && left.label_color == right.label_color;
}

inline bool operator!=(const TAppearance& left, const TAppearance& right)
{
    return !(left == right);
}

/// What belongs to the document besides the pages and labels of the model.
struct TDocumentFacts
{
    TPageRows page_rows;
    TAppearance appearance;
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
    using TPlacedRows = std::vector<std::pair<int, TPageRow>>;

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
    void Note_Appearance(const TAppearance& before, const TAppearance& after);

    /// Whether the document is as it was before the step, and looks like that.
    bool Is_Void(const TData& model, const TAppearance& appearance) const;
    /// Ids of the pages that the step changed; none when it only changed how all of them look.
    std::vector<int> Touched_Pages() const;
    /// Exchanges the two states: the document's and the other one.
    void Swap(TData* model, TDocumentFacts* facts);

private:
    TRowsChange d_rows;
    std::optional<TAppearance> d_appearance; ///< the other one; empty when both are the same
};
