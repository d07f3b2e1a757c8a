#pragma once

#include "src/data.h"
#include "src/model/namedpage.h"

#include <QColor>
#include <QVector>

#include <vector>

/// The rows of the page list: the order and the names of the pages. They belong to the document,
/// but not to the model. A QVector, so that steps share rows that they do not change.
using TPageRows = QVector<TNamedPage>;

/// Size and colour of all labels of the document.
struct TLabelLook
{
    int size = 0; ///< edge of a label in page-image pixels
    QColor color;
};

inline bool operator==(const TLabelLook& left, const TLabelLook& right)
{
    return left.size == right.size && left.color == right.color;
}

/// The part of the document that is outside the model.
struct TRowsAndLook
{
    TPageRows rows;
    TLabelLook look;
};

/// An undo step. It stores the document's state before the step or, once undone, after the step.
///
/// It stores whole pages, but only those that the step changed or removed. Copies of a page share
/// its image.
class TDocumentStep
{
public:
    /// Begins a step: stores the order of the pages, and the given rows and look.
    TDocumentStep(const TData& data, TRowsAndLook rows_and_look);

    /// Stores a page before the step changes it. Ignores pages that are stored already or that the
    /// step itself added.
    void Store_Page(const TPageItem& page);
    /// Ends the step: drops stored pages that did not change after all, and the pixels of images
    /// that only the step still uses.
    void Close(const TData& data);

    /// Whether a closed step changed nothing.
    bool Is_No_Op(const TData& data, const TRowsAndLook& rows_and_look) const;
    /// Ids of the pages that the step changed, added or removed. Pages that only moved, and changes
    /// of the look, do not count.
    std::vector<int> Touched_Pages(const TPageRows& rows) const;
    /// Exchanges the stored state and the document's: undoes the step or redoes it.
    void Swap(TData* data, TRowsAndLook* rows_and_look);

    /// Upper bound of the memory that the step uses, in bytes: pages, labels, rows, and the encoded
    /// images that the document does not share. Steps may share texts and rows.
    qint64 Bytes() const { return d_bytes; }

private:
    bool Is_Unchanged(const TData& data, const TPageItem& stored);
    void Release_Images(const TData& data);
    void Count_Texts();

    std::vector<TPageItem> d_pages; ///< those that differ from the document's
    std::vector<int> d_page_order;  ///< ids of all pages, in the model's order
    TRowsAndLook d_rows_and_look;
    std::size_t d_difference = 0; ///< index of a label that was changed when last compared
    std::size_t d_text_bytes = 0; ///< of label texts and page names
    qint64 d_bytes = 0;
};
