#include "src/format/itemtable.h"

#include <QCoreApplication>
#include <QLocale>
#include <QStringList>
#include <QTextCodec>

#include <algorithm>
#include <array>
#include <cmath>
#include <iterator>
#include <optional>

namespace {

constexpr char byte_order_mark[] = "\xef\xbb\xbf";
const QChar quote = QLatin1Char('"');
const QChar comma = QLatin1Char(',');

enum TColumn { Page, Value, Text, Border, X, Y };

struct TColumnName
{
    const char* name;
    bool is_required;
};

/// In the order of TColumn, which is that in which they are written.
constexpr std::array<TColumnName, 6> columns{{{"page", true},
                                              {"value", true},
                                              {"text", false},
                                              {"border", false},
                                              {"x", true},
                                              {"y", true}}};

/// The word for a border; its code as a number when there is none.
QString Border_Text(int code)
{
    const auto* const found =
        std::find_if(std::cbegin(Border_Names), std::cend(Border_Names),
                     [code](const TBorderName& border) { return border.code == code; });
    return found == std::cend(Border_Names) ? QString::number(code)
                                            : QString::fromLatin1(found->name);
}

/// The code of a border that is given as a word or as a code.
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

QString Quoted(const QString& field)
{
    const bool is_plain = std::none_of(field.cbegin(), field.cend(), [](QChar character) {
        return character == quote || character == comma || character == QLatin1Char('\n') ||
               character == QLatin1Char('\r');
    });
    if (is_plain)
        return field;
    return quote + QString(field).replace(quote, QStringLiteral("\"\"")) + quote;
}

QString Coordinate_Text(double coordinate)
{
    return QString::number(coordinate, 'g', QLocale::FloatingPointShortest);
}

QString Line(const QStringList& fields)
{
    QStringList quoted;
    std::transform(fields.cbegin(), fields.cend(), std::back_inserter(quoted), Quoted);
    return quoted.join(comma) + QStringLiteral("\r\n");
}

/// One record of a table: its fields, and the line in which it begins.
struct TRecord
{
    QStringList fields;
    int line = 1;

    /// Also so for what spreadsheets write of empty rows.
    bool Is_Empty() const
    {
        return std::all_of(fields.cbegin(), fields.cend(),
                           [](const QString& field) { return field.isEmpty(); });
    }
};

/// Reads comma-separated values, record after record.
class TRecordReader
{
    Q_DECLARE_TR_FUNCTIONS(ItemTable)

public:
    explicit TRecordReader(const QString& text)
        : d_text(text)
    {
    }

    /// The next record that is not empty; empty at the end.
    std::optional<TRecord> Next();

private:
    TRecord Read_Record();
    QString Read_Field();
    QString Read_Quoted_Field();
    void Pass_Line_End();

    bool Is_At_End() const { return d_position >= d_text.size(); }
    QChar Character() const { return Is_At_End() ? QChar() : d_text.at(d_position); }
    bool Is_At_Line_End() const
    {
        return Character() == QLatin1Char('\n') || Character() == QLatin1Char('\r');
    }

    const QString d_text;
    int d_position = 0;
    int d_line = 1;        ///< of the position
    int d_record_line = 1; ///< in which the record began
};

std::optional<TRecord> TRecordReader::Next()
{
    while (!Is_At_End()) {
        TRecord record = Read_Record();
        if (!record.Is_Empty())
            return record;
    }
    return std::nullopt;
}

TRecord TRecordReader::Read_Record()
{
    d_record_line = d_line;
    TRecord record;
    record.line = d_line;
    record.fields += Read_Field();
    while (!Is_At_End() && Character() == comma) {
        ++d_position;
        record.fields += Read_Field();
    }
    if (!Is_At_End())
        Pass_Line_End();
    return record;
}

QString TRecordReader::Read_Field()
{
    if (!Is_At_End() && Character() == quote)
        return Read_Quoted_Field();
    const int begin = d_position;
    while (!Is_At_End() && Character() != comma && !Is_At_Line_End()) {
        if (Character() == quote)
            throw TItemTableException(tr("a quote within a field that does not begin with one"),
                                      d_record_line);
        ++d_position;
    }
    return d_text.mid(begin, d_position - begin);
}

QString TRecordReader::Read_Quoted_Field()
{
    QString field;
    ++d_position;
    while (!Is_At_End()) {
        const int begin = d_position;
        while (!Is_At_End() && Character() != quote && !Is_At_Line_End())
            ++d_position;
        field += d_text.midRef(begin, d_position - begin);
        if (Is_At_Line_End()) {
            const int line_end = d_position;
            Pass_Line_End();
            field += d_text.midRef(line_end, d_position - line_end);
        } else if (!Is_At_End() && d_text.midRef(d_position + 1, 1) == quote) {
            field += quote;
            d_position += 2;
        } else if (!Is_At_End()) {
            ++d_position;
            if (!Is_At_End() && Character() != comma && !Is_At_Line_End())
                throw TItemTableException(tr("characters after the end of a quoted field"),
                                          d_record_line);
            return field;
        }
    }
    throw TItemTableException(tr("a quoted field that does not end"), d_record_line);
}

void TRecordReader::Pass_Line_End()
{
    const bool is_pair = d_text.midRef(d_position, 2) == QLatin1String("\r\n");
    d_position += is_pair ? 2 : 1;
    ++d_line;
}

/// Makes labels of records.
class TRowReader
{
    Q_DECLARE_TR_FUNCTIONS(ItemTable)

public:
    /// @throws TItemTableException unless the record names all required columns, none of them
    /// twice.
    explicit TRowReader(const TRecord& header);

    TItemRow Row(const TRecord& record) const;

private:
    QString Field(const TRecord& record, TColumn column) const;
    int Integer(const TRecord& record, TColumn column) const;
    double Coordinate(const TRecord& record, TColumn column) const;
    int Border_Type(const TRecord& record) const;
    [[noreturn]] static void Refuse(const TRecord& record, TColumn column, const QString& field);

    int d_field_count = 0;
    std::array<int, columns.size()> d_places{}; ///< of the columns in a record, -1 for none
};

TRowReader::TRowReader(const TRecord& header)
    : d_field_count(header.fields.size())
{
    if (header.fields.size() == 1)
        throw TItemTableException(tr("there is one column only: it takes commas between them"),
                                  header.line);
    QStringList names;
    for (const QString& field : header.fields)
        names += field.trimmed().toLower();
    for (std::size_t column = 0; column < columns.size(); ++column) {
        const QString name = QString::fromLatin1(columns[column].name);
        d_places[column] = names.indexOf(name);
        if (d_places[column] < 0 && columns[column].is_required)
            throw TItemTableException(tr("there is no column \"%1\"").arg(name), header.line);
        if (names.count(name) > 1)
            throw TItemTableException(tr("there are two columns \"%1\"").arg(name), header.line);
    }
}

TItemRow TRowReader::Row(const TRecord& record) const
{
    if (record.fields.size() != d_field_count)
        throw TItemTableException(
            tr("%1 fields where there are %2 columns").arg(record.fields.size()).arg(d_field_count),
            record.line);
    TItemRow row;
    row.page = Integer(record, Page);
    if (row.page < 1)
        Refuse(record, Page, Field(record, Page));
    row.item.value = Integer(record, Value);
    row.item.text = Field(record, Text);
    row.item.border_type = Border_Type(record);
    row.item.position = {Coordinate(record, X), Coordinate(record, Y)};
    row.line = record.line;
    return row;
}

QString TRowReader::Field(const TRecord& record, TColumn column) const
{
    return d_places[column] < 0 ? QString() : record.fields.at(d_places[column]);
}

int TRowReader::Integer(const TRecord& record, TColumn column) const
{
    bool is_number = false;
    const QString field = Field(record, column);
    const int number = field.trimmed().toInt(&is_number);
    if (!is_number)
        Refuse(record, column, field);
    return number;
}

double TRowReader::Coordinate(const TRecord& record, TColumn column) const
{
    bool is_number = false;
    const QString field = Field(record, column);
    const double number = field.trimmed().toDouble(&is_number);
    if (!is_number || !std::isfinite(number))
        Refuse(record, column, field);
    return number;
}

int TRowReader::Border_Type(const TRecord& record) const
{
    const QString field = Field(record, Border);
    if (field.trimmed().isEmpty())
        return No_Border;
    const std::optional<int> code = Border_Code(field.trimmed());
    if (!code)
        Refuse(record, Border, field);
    return *code;
}

void TRowReader::Refuse(const TRecord& record, TColumn column, const QString& field)
{
    static const std::array<const char*, columns.size()> kinds{
        {QT_TR_NOOP("\"%1\" is no page number"),
         QT_TR_NOOP("\"%1\" is no value: it takes a whole number"), "",
         QT_TR_NOOP("\"%1\" is no border: it takes none, square, ellipse, triangle or diamond"),
         QT_TR_NOOP("\"%1\" is no x coordinate: it takes a number such as 12.5"),
         QT_TR_NOOP("\"%1\" is no y coordinate: it takes a number such as 12.5")}};
    throw TItemTableException(tr(kinds[column]).arg(field), record.line);
}

/// The text of a table, which has to be UTF-8.
QString Decoded(const QByteArray& table)
{
    QTextCodec::ConverterState state(QTextCodec::IgnoreHeader);
    QString text =
        QTextCodec::codecForName("UTF-8")->toUnicode(table.constData(), table.size(), &state);
    if (state.invalidChars == 0 && state.remainingChars == 0)
        return text;
    // The line is that of the first character that could not be read.
    const int damage = text.indexOf(QChar(QChar::ReplacementCharacter));
    throw TItemTableException(QCoreApplication::translate("ItemTable", "the table is not in UTF-8"),
                              1 + text.leftRef(damage).count(QLatin1Char('\n')));
}

} // namespace

QByteArray ItemTable::Write(const std::vector<TItemRow>& rows)
{
    QStringList names;
    for (const TColumnName& column : columns)
        names += QString::fromLatin1(column.name);
    QString table = Line(names);
    for (const TItemRow& row : rows) {
        const TDataItem& item = row.item;
        table += Line({QString::number(row.page), QString::number(item.value), item.text,
                       Border_Text(item.border_type), Coordinate_Text(item.position.x()),
                       Coordinate_Text(item.position.y())});
    }
    return table.toUtf8();
}

std::vector<TItemRow> ItemTable::Read(const QByteArray& table)
{
    const bool has_mark = table.startsWith(byte_order_mark);
    const int mark_size = static_cast<int>(sizeof(byte_order_mark)) - 1;
    TRecordReader records(Decoded(has_mark ? table.mid(mark_size) : table));
    const std::optional<TRecord> header = records.Next();
    if (!header)
        throw TItemTableException(QCoreApplication::translate("ItemTable", "the table is empty"),
                                  1);
    const TRowReader reader(*header);
    std::vector<TItemRow> rows;
    for (std::optional<TRecord> record = records.Next(); record; record = records.Next())
        rows.push_back(reader.Row(*record));
    return rows;
}
