#include "src/findings/findingstable.h"

#include "src/format/csv.h"
#include "src/format/itemtable.h"

#include <QCoreApplication>

namespace {

/// Converts records to rows.
class TTableReader
{
    Q_DECLARE_TR_FUNCTIONS(FindingsTable)

public:
    /// @throws TCsvException if page or value is missing or a column is repeated.
    TTableReader(const TCsvRecord& header, const QStringList& page_names);

    QStringList Headings() const { return d_headings; }
    TFindingsRow Row(const TCsvRecord& record) const;

private:
    static int Index(const TCsvRecord& header, const QString& name);
    static int Integer(const TCsvRecord& record, int index, const QString& message);
    void Check_Fields(const TCsvRecord& record) const;

    int d_field_count;
    QStringList d_page_names;
    int d_page_index;
    int d_value_index;
    QStringList d_headings;
    std::vector<int> d_indexes;         ///< of the headings in a record
    std::vector<int> d_unnamed_indexes; ///< of the columns without a name
};

TTableReader::TTableReader(const TCsvRecord& header, const QStringList& page_names)
    : d_field_count(header.fields.size())
    , d_page_names(page_names)
    , d_page_index(Index(header, QStringLiteral("page")))
    , d_value_index(Index(header, QStringLiteral("value")))
{
    for (int index = 0; index < d_field_count; ++index) {
        const QString name = header.fields.at(index).trimmed();
        if (name.isEmpty()) {
            d_unnamed_indexes.push_back(index);
        } else if (!ItemTable::Columns().contains(name, Qt::CaseInsensitive)) {
            if (d_headings.contains(name))
                throw TCsvException(tr("there are two columns \"%1\"").arg(name),
                                    header.Place(index));
            d_headings += name;
            d_indexes.push_back(index);
        }
    }
}

/// The index of a required column.
int TTableReader::Index(const TCsvRecord& header, const QString& name)
{
    int found = -1;
    for (int index = 0; index < header.fields.size(); ++index) {
        if (header.fields.at(index).trimmed().compare(name, Qt::CaseInsensitive) != 0)
            continue;
        if (found >= 0)
            throw TCsvException(tr("there are two columns \"%1\"").arg(name), header.Place(index));
        found = index;
    }
    if (found < 0)
        throw TCsvException(tr("there is no column \"%1\"").arg(name), header.Place());
    return found;
}

TFindingsRow TTableReader::Row(const TCsvRecord& record) const
{
    Check_Fields(record);
    TFindingsRow row;
    row.line = record.Line();
    row.page = ItemTable::Page_Number(record, d_page_index, d_page_names);
    row.value = Integer(record, d_value_index, tr("\"%1\" is not a whole number"));
    for (const int index : d_indexes) {
        QString cell = record.fields.at(index);
        cell.replace(QStringLiteral("\r\n"), QStringLiteral("\n"));
        row.cells += cell.replace(QLatin1Char('\r'), QLatin1Char('\n'));
    }
    return row;
}

int TTableReader::Integer(const TCsvRecord& record, int index, const QString& message)
{
    bool is_number = false;
    const QString field = record.fields.at(index);
    const int number = field.trimmed().toInt(&is_number);
    if (!is_number)
        throw TCsvException(message.arg(field), record.Place(index));
    return number;
}

void TTableReader::Check_Fields(const TCsvRecord& record) const
{
    if (record.fields.size() != d_field_count)
        throw TCsvException(
            tr("%1 fields, but there are %2 columns").arg(record.fields.size()).arg(d_field_count),
            record.Place());
    for (const int index : d_unnamed_indexes) {
        if (!record.fields.at(index).isEmpty())
            throw TCsvException(
                tr("\"%1\" is in a column without a name").arg(record.fields.at(index)),
                record.Place(index));
    }
}

} // namespace

TFindingsTable TFindingsTable::Read(const QByteArray& table, const QStringList& page_names)
{
    const std::vector<TCsvRecord> records = Csv::Read(table);
    const TTableReader reader(records.front(), page_names);
    TFindingsTable result;
    result.headings = reader.Headings();
    for (std::size_t index = 1; index < records.size(); ++index)
        result.rows.push_back(reader.Row(records[index]));
    return result;
}
