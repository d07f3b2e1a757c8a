#include "src/findings/findings.h"

#include "src/data.h"
#include "src/findings/findingstable.h"

#include <QCoreApplication>
#include <QHash>
#include <QPair>

#include <algorithm>
#include <cstddef>
#include <iterator>
#include <numeric>

namespace {

/// The key by which rows and labels are matched: page number and label value.
using TKey = QPair<int, int>;

/// Joins a table to labels.
class TJoin
{
    Q_DECLARE_TR_FUNCTIONS(Findings)

public:
    TJoin(const TFindingsTable& table, int page_count, const QSet<int>& checked_pages)
        : d_table(table)
        , d_page_count(page_count)
        , d_checked_pages(checked_pages)
        , d_is_used(table.rows.size(), false)
    {
        for (std::size_t index = 0; index < table.rows.size(); ++index)
            d_rows[{table.rows[index].page, table.rows[index].value}].push_back(index);
    }

    /// Gives the labels of a page their cells.
    void Join_Page(TFindingsPage* page);
    /// Adds a warning for each row that no label uses.
    void Report_Unused_Rows();

    QStringList Warnings() const { return d_warnings; }

private:
    QStringList Cells(const TKey& key, int index);
    QString Unused_Row_Text(const TFindingsRow& row) const;
    void Warn(int page, const QString& text);

    const TFindingsTable& d_table;
    const int d_page_count; ///< of the document
    const QSet<int>& d_checked_pages;
    QHash<TKey, std::vector<std::size_t>> d_rows; ///< indexes in the table
    std::vector<bool> d_is_used;                  ///< for each row of the table
    QHash<TKey, int> d_label_counts;
    QStringList d_warnings;
};

void TJoin::Join_Page(TFindingsPage* page)
{
    for (TFinding& finding : page->rows) {
        const TKey key(page->number, finding.label.value);
        finding.cells = Cells(key, d_label_counts[key]++);
        // Report it once, for the second label.
        if (d_label_counts[key] == 2)
            Warn(page->number, tr("page %1: several labels have the number %2")
                                   .arg(page->number)
                                   .arg(finding.label.value));
    }
}

/// The cells of a label.
/// @param index  among the labels with the same key, from 0.
QStringList TJoin::Cells(const TKey& key, int index)
{
    const std::vector<std::size_t> rows = d_rows.value(key);
    if (rows.empty()) {
        Warn(key.first, tr("page %1: label %2 has no row").arg(key.first).arg(key.second));
        QStringList empty;
        std::fill_n(std::back_inserter(empty), d_table.headings.size(), QString());
        return empty;
    }
    const std::size_t row = rows[std::min(static_cast<std::size_t>(index), rows.size() - 1)];
    d_is_used[row] = true;
    return d_table.rows[row].cells;
}

void TJoin::Report_Unused_Rows()
{
    for (std::size_t index = 0; index < d_table.rows.size(); ++index) {
        if (!d_is_used[index])
            Warn(d_table.rows[index].page, Unused_Row_Text(d_table.rows[index]));
    }
}

QString TJoin::Unused_Row_Text(const TFindingsRow& row) const
{
    if (row.page > d_page_count)
        return tr("line %1: there is no page %2").arg(row.line).arg(row.page);
    const QString text = d_label_counts.contains({row.page, row.value})
                             ? tr("line %1: page %2 has no further label %3")
                             : tr("line %1: page %2 has no label %3");
    return text.arg(row.line).arg(row.page).arg(row.value);
}

/// Adds a warning unless the page exists and is not to be checked.
void TJoin::Warn(int page, const QString& text)
{
    if (d_checked_pages.isEmpty() || d_checked_pages.contains(page) || page > d_page_count)
        d_warnings += text;
}

} // namespace

QString TFindingsPage::Title() const
{
    return name.trimmed().isEmpty() ? QCoreApplication::translate("Findings", "Page %1").arg(number)
                                    : name;
}

int TFindings::Count() const
{
    return std::accumulate(pages.cbegin(), pages.cend(), 0,
                           [](int count, const TFindingsPage& page) {
                               return count + static_cast<int>(page.rows.size());
                           });
}

bool TFindings::Has_Texts() const
{
    return std::any_of(pages.cbegin(), pages.cend(), [](const TFindingsPage& page) {
        return std::any_of(page.rows.cbegin(), page.rows.cend(),
                           [](const TFinding& finding) { return !finding.label.text.isEmpty(); });
    });
}

TFindings Findings::Of(const TData& data, const std::vector<TNamedPage>& pages)
{
    QHash<int, const TPageItem*> items;
    for (const TPageItem& page : data.Pages())
        items.insert(page.page_id, &page);
    TFindings findings;
    int number = 0;
    for (const TNamedPage& page : pages) {
        TFindingsPage entry{page.page_id, ++number, page.name, {}};
        if (const TPageItem* const item = items.value(page.page_id)) {
            for (const TDataItem& label : item->data_items)
                entry.rows.push_back({label, {}});
        }
        findings.pages.push_back(std::move(entry));
    }
    return findings;
}

QStringList Findings::Join(const TFindingsTable& table, TFindings* findings,
                           const QSet<int>& checked_pages)
{
    findings->headings = table.headings;
    TJoin join(table, static_cast<int>(findings->pages.size()), checked_pages);
    for (TFindingsPage& page : findings->pages)
        join.Join_Page(&page);
    join.Report_Unused_Rows();
    return join.Warnings();
}
