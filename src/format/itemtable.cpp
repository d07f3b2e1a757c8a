#include "src/format/itemtable.h"

#include <QCoreApplication>
#include <QLocale>

#include <algorithm>
#include <array>
#include <cmath>
#include <iterator>
#include <optional>

namespace {

enum TColumn { Page, Value, Text, Border, X, Y, Id };

struct TColumnName
{
    const char* name;
    bool is_required;
};

/// In the order of TColumn. Columns are written in this order.
constexpr std::array<TColumnName, 7> columns{{{"page", true},
                                              {"value", true},
                                              {"text", false},
                                              {"border", false},
                                              {"x", true},
                                              {"y", true},
                                              {"id", false}}};

/// The code of a border, which is given as a word or a code.
std::optional<int> Border_Code(const QString& text)
{
    bool is_number = false;
    const int code = text.toInt(&is_number);
    for (const TBorderName& border : Border_Names) {
        if (is_number ? code == border.code
                      : text.compare(QLatin1String(border.name), Qt::CaseInsensitive) == 0)
            return border.code;
    }
    return std::nullopt;
}

/// The words for all borders.
QString Border_Words()
{
    QStringList words;
    for (const TBorderName& border : Border_Names)
        words += QLatin1String(border.name);
    return words.join(QStringLiteral(", "));
}

QString Shortest_Text(double coordinate)
{
    return QString::number(coordinate, 'g', QLocale::FloatingPointShortest);
}

/// Converts records to labels.
class TRowReader
{
    Q_DECLARE_TR_FUNCTIONS(ItemTable)

public:
    /// @throws TCsvException if a required column is missing or a column is repeated.
    TRowReader(const TCsvRecord& header, const QStringList& page_names, ItemTable::TIds ids);

    TItemRow Row(const TCsvRecord& record) const;

private:
    QString Field(const TCsvRecord& record, TColumn column) const;
    int Integer(const TCsvRecord& record, TColumn column) const;
    double Coordinate(const TCsvRecord& record, TColumn column) const;
    int Border_Type(const TCsvRecord& record) const;
    [[noreturn]] void Refuse(const TCsvRecord& record, TColumn column) const;

    ItemTable::TIds d_ids;
    int d_field_count = 0;
    QStringList d_page_names;
    std::array<int, columns.size()> d_indexes{}; ///< of the columns in a record; -1 if missing
};

TRowReader::TRowReader(const TCsvRecord& header, const QStringList& page_names, ItemTable::TIds ids)
    : d_ids(ids)
    , d_field_count(header.fields.size())
    , d_page_names(page_names)
{
    QStringList names;
    for (const QString& field : header.fields)
        names += field.trimmed().toLower();
    for (std::size_t column = 0; column < columns.size(); ++column) {
        const QString name = QString::fromLatin1(columns[column].name);
        d_indexes[column] = names.indexOf(name);
        if (d_indexes[column] < 0 && columns[column].is_required)
            throw TCsvException(tr("there is no column \"%1\"").arg(name), header.Place());
        if (names.count(name) > 1)
            throw TCsvException(tr("there are two columns \"%1\"").arg(name),
                                header.Place(names.lastIndexOf(name)));
    }
}

TItemRow TRowReader::Row(const TCsvRecord& record) const
{
    if (record.fields.size() != d_field_count)
        throw TCsvException(
            tr("%1 fields, but there are %2 columns").arg(record.fields.size()).arg(d_field_count),
            record.Place());
    TItemRow row;
    row.page = ItemTable::Page_Number(record, d_indexes[Page], d_page_names);
    row.item.value = Integer(record, Value);
    row.item.text = Field(record, Text);
    row.item.border_type = Border_Type(record);
    row.item.position = {Coordinate(record, X), Coordinate(record, Y)};
    row.has_text = d_indexes[Text] >= 0;
    row.has_border = d_indexes[Border] >= 0;
    row.has_id = d_ids == ItemTable::TIds::Read && !Field(record, Id).trimmed().isEmpty();
    if (row.has_id)
        row.item.id = Integer(record, Id);
    row.place = record.Place(d_indexes[Page]);
    return row;
}

QString TRowReader::Field(const TCsvRecord& record, TColumn column) const
{
    return d_indexes[column] < 0 ? QString() : record.fields.at(d_indexes[column]);
}

int TRowReader::Integer(const TCsvRecord& record, TColumn column) const
{
    bool is_number = false;
    const QString field = Field(record, column);
    const int number = field.trimmed().toInt(&is_number);
    if (!is_number)
        Refuse(record, column);
    return number;
}

double TRowReader::Coordinate(const TCsvRecord& record, TColumn column) const
{
    bool is_number = false;
    const QString field = Field(record, column);
    const double number = field.trimmed().toDouble(&is_number);
    if (!is_number || !std::isfinite(number))
        Refuse(record, column);
    return number;
}

int TRowReader::Border_Type(const TCsvRecord& record) const
{
    const QString field = Field(record, Border);
    if (field.trimmed().isEmpty())
        return No_Border;
    const std::optional<int> code = Border_Code(field.trimmed());
    if (!code)
        Refuse(record, Border);
    return *code;
}

void TRowReader::Refuse(const TCsvRecord& record, TColumn column) const
{
    static const std::array<const char*, columns.size()> kinds{
        {"", QT_TR_NOOP("\"%1\" is not a value: expected a whole number"), "",
         QT_TR_NOOP("\"%1\" is not a border: expected one of: "),
         QT_TR_NOOP("\"%1\" is not an x coordinate: expected a number such as 12.5"),
         QT_TR_NOOP("\"%1\" is not a y coordinate: expected a number such as 12.5"),
         QT_TR_NOOP("\"%1\" is not an id: expected a whole number")}};
    QString message = tr(kinds[column]).arg(Field(record, column));
    if (column == Border)
        message += Border_Words();
    throw TCsvException(message, record.Place(d_indexes[column]));
}

} // namespace

QStringList ItemTable::Columns()
{
    QStringList names;
    for (const TColumnName& column : columns)
        names += QString::fromLatin1(column.name);
    return names;
}

QString ItemTable::Border_Text(int code)
{
    const auto* const found =
        std::find_if(std::cbegin(Border_Names), std::cend(Border_Names),
                     [code](const TBorderName& border) { return border.code == code; });
    return found == std::cend(Border_Names) ? QString::number(code)
                                            : QString::fromLatin1(found->name);
}

QString ItemTable::Position_Text(const QPointF& position)
{
    constexpr char without_exponent = 'f';
    return QString::number(position.x(), without_exponent, QLocale::FloatingPointShortest) +
           QLatin1Char(',') +
           QString::number(position.y(), without_exponent, QLocale::FloatingPointShortest);
}

QByteArray ItemTable::Write(const std::vector<TItemRow>& rows, const QStringList& headings,
                            QChar separator)
{
    QString table = Csv::Line(Columns() + headings, separator);
    for (const TItemRow& row : rows) {
        const TDataItem& item = row.item;
        const QStringList fields{QString::number(row.page),
                                 QString::number(item.value),
                                 item.text,
                                 Border_Text(item.border_type),
                                 Shortest_Text(item.position.x()),
                                 Shortest_Text(item.position.y()),
                                 QString::number(item.id)};
        table += Csv::Line(fields + row.cells, separator);
    }
    return table.toUtf8();
}

int ItemTable::Page_Number(const TCsvRecord& record, int index, const QStringList& page_names)
{
    const QString& field = record.fields.at(index);
    bool is_number = false;
    const int number = field.trimmed().toInt(&is_number);
    if (is_number && number > 0)
        return number;
    if (!is_number && page_names.count(field) == 1)
        return page_names.indexOf(field) + 1;
    throw TCsvException(
        TRowReader::tr("\"%1\" is neither a page number nor the name of one page").arg(field),
        record.Place(index));
}

std::vector<TItemRow> ItemTable::Read(const QByteArray& table, QChar separator,
                                      const QStringList& page_names, TIds ids)
{
    const std::vector<TCsvRecord> records = Csv::Read(table, separator);
    const TRowReader reader(records.front(), page_names, ids);
    std::vector<TItemRow> rows;
    std::transform(std::next(records.cbegin()), records.cend(), std::back_inserter(rows),
                   [&reader](const TCsvRecord& record) { return reader.Row(record); });
    return rows;
}
