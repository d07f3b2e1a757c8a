#include "src/format/labelclipboard.h"

#include "src/format/itemtable.h"

#include <QMimeData>

namespace {

const QLatin1String csv_type("text/csv");

/// The separator of a table: a tab if the first line contains one, otherwise a comma.
QChar Separator_Of(const QByteArray& table)
{
    const int tab = table.indexOf('\t');
    const int line_end = table.indexOf('\n');
    return tab >= 0 && (line_end < 0 || tab < line_end) ? Csv::Tab : Csv::Comma;
}

} // namespace

std::unique_ptr<QMimeData> LabelClipboard::Copy(const std::vector<TDataItem>& items, int page)
{
    std::vector<TItemRow> rows;
    rows.reserve(items.size());
    for (const TDataItem& item : items) {
        rows.push_back({page, item});
        if (!Is_Border_Type(item.border_type))
            rows.back().item.border_type = No_Border;
    }
    auto data = std::make_unique<QMimeData>();
    data->setData(csv_type, ItemTable::Write(rows));
    data->setText(QString::fromUtf8(ItemTable::Write(rows, {}, Csv::Tab)));
    return data;
}

std::vector<TDataItem> LabelClipboard::Paste(const QMimeData& data)
{
    const QByteArray table = data.hasFormat(csv_type) ? data.data(csv_type) : data.text().toUtf8();
    std::vector<TDataItem> items;
    for (const TItemRow& row :
         ItemTable::Read(table, Separator_Of(table), {}, ItemTable::TIds::Ignore))
        items.push_back(row.item);
    return items;
}
