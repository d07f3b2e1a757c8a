#pragma once

#include "src/format/itemtable.h"

#include <QSet>
#include <QString>
#include <QStringList>

#include <vector>

struct TDocument;

/// Brings the rows of a table into a document.
///
/// A row with the id of a label on its page changes that label. Columns that the table lacks stay
/// unchanged. Any other row adds a label.
class TItemImport
{
public:
    /// Whether the labels that the table does not name are removed.
    enum class TOthers { Keep, Remove };

    TItemImport(std::vector<TItemRow> rows, TOthers others);

    /// Checks that the labels are near the images of their pages.
    /// @throws TCsvException
    void Check_Positions(const TDocument& document) const;

    /// Changes the document.
    /// @return  a line about each change, and a summary.
    /// @throws TCsvException for a page that the document does not have, or a repeated id.
    QStringList Apply(TDocument* document);

private:
    using TPageRows = std::vector<const TItemRow*>;

    std::vector<TPageRows> Rows_By_Page(std::size_t page_count) const;
    static QSet<int> Named_Ids(const TPageRows& rows);
    std::vector<TDataItem> Merged(const std::vector<TDataItem>& old, const TPageRows& rows);
    void Change(const TItemRow& row, TDataItem* label);
    void Note(const QString& change);

    std::vector<TItemRow> d_rows;
    TOthers d_others;
    int d_page = 0; ///< number of the current page, from 1
    QStringList d_changes;
    int d_added_count = 0;
    int d_changed_count = 0;
    int d_removed_count = 0;
    int d_label_count = 0; ///< of all labels afterwards
};
