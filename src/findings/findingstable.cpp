#include "src/findings/findingstable.h"

#include "src/format/csv.h"
#include "src/format/itemtable.h"

#include <QCoreApplication>

namespace {

/// Makes rows of records.
class TTableReader
{
    Q_DECLARE_TR_FUNCTIONS(FindingsTable)

public:
    /// @throws TCsvException unless the record names page and value and no column twice.
    explicit TTableReader(const TCsvRecord& header);

    QStringList Headings() const { return d_headings; }
    TFindingsRow Row(const TCsvRecord& record) const;

private:
    static int Place(const TCsvRecord& header, const QString& name);
    static int Integer(const TCsvRecord& record, int place, const QString& complaint);
    void Check_Fields(const TCsvRecord& record) const;

    int d_field_count;
    int d_page_place;
    int d_value_place;
    QStringList d_headings;
    std::vector<int> d_places;         ///< of the headings in a record
    std::vector<int> d_unnamed_places; ///< of the columns without a name
};

TTableReader::TTableReader(const TCsvRecord& header)
    : d_field_count(header.fields.size())
    , d_page_place(Place(header, QStringLiteral("page")))
    , d_value_place(Place(header, QStringLiteral("value")))
{
    for (int place = 0; place < d_field_count; ++place) {
        const QString name = header.fields.at(place).trimmed();
        if (name.isEmpty()) {
            d_unnamed_places.push_back(place);
        } else if (!ItemTable::Columns().contains(name, Qt::CaseInsensitive)) {
            if (d_headings.contains(name))
                throw TCsvException(tr("there are two columns \"%1\"").arg(name), header.line);
            d_headings += name;
            d_places.push_back(place);
        }
    }
}

/// The place of a required column.
int TTableReader::Place(const TCsvRecord& header, const QString& name)
{
    int found = -1;
    for (int place = 0; place < header.fields.size(); ++place) {
        if (header.fields.at(place).trimmed().compare(name, Qt::CaseInsensitive) != 0)
            continue;
        if (found >= 0)
            throw TCsvException(tr("there are two columns \"%1\"").arg(name), header.line);
        found = place;
    }
    if (found < 0)
        throw TCsvException(tr("there is no column \"%1\"").arg(name), header.line);
    return found;
}

TFindingsRow TTableReader::Row(const TCsvRecord& record) const
{
    Check_Fields(record);
    const QString page_complaint = tr("\"%1\" is not a page number");
    TFindingsRow row;
    row.line = record.line;
    row.page = Integer(record, d_page_place, page_complaint);
    if (row.page < 1)
        throw TCsvException(page_complaint.arg(record.fields.at(d_page_place)), record.line);
    row.value = Integer(record, d_value_place, tr("\"%1\" is not a whole number"));
    for (const int place : d_places) {
        QString cell = record.fields.at(place);
        cell.replace(QStringLiteral("\r\n"), QStringLiteral("\n"));
        row.cells += cell.replace(QLatin1Char('\r'), QLatin1Char('\n'));
    }
    return row;
}

int TTableReader::Integer(const TCsvRecord& record, int place, const QString& complaint)
{
    bool is_number = false;
    const QString field = record.fields.at(place);
    const int number = field.trimmed().toInt(&is_number);
    if (!is_number)
        throw TCsvException(complaint.arg(field), record.line);
    return number;
}

void TTableReader::Check_Fields(const TCsvRecord& record) const
{
    if (record.fields.size() != d_field_count)
        throw TCsvException(
            tr("%1 fields, but there are %2 columns").arg(record.fields.size()).arg(d_field_count),
            record.line);
    for (const int place : d_unnamed_places) {
        if (!record.fields.at(place).isEmpty())
            throw TCsvException(
                tr("\"%1\" is in a column without a name").arg(record.fields.at(place)),
                record.line);
    }
}

} // namespace

TFindingsTable TFindingsTable::Read(const QByteArray& table)
{
    const std::vector<TCsvRecord> records = Csv::Read(table);
    const TTableReader reader(records.front());
    TFindingsTable result;
    result.headings = reader.Headings();
    for (std::size_t place = 1; place < records.size(); ++place)
        result.rows.push_back(reader.Row(records[place]));
    return result;
}
