#include "src/format/itemtable.h"

#include <QCoreApplication>
#include <QLocale>
#include <QRegularExpression>
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
const QLatin1String quote_pair("\"\"");

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
    return quote + QString(field).replace(quote, quote_pair) + quote;
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

/// Number of line ends in a text. CR LF is one.
int Line_Ends(const QString& text)
{
    return text.count(QLatin1Char('\n')) + text.count(QLatin1Char('\r')) -
           text.count(QLatin1String("\r\n"));
}

/// One record of a table: its fields, and the line in which it begins.
struct TRecord
{
    QStringList fields;
    int line = 1;

    /// Spreadsheets write commas for an empty row.
    bool Is_Empty() const
    {
        return std::all_of(fields.cbegin(), fields.cend(),
                           [](const QString& field) { return field.isEmpty(); });
    }
};

/// Groups of the pattern of a field.
enum TFieldGroup { Quoted_Content = 1, Plain_Content, Separator };

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
    static QString Fault(const QRegularExpressionMatch& field);

    const QString d_text;
    int d_position = 0;
    int d_line = 1; ///< of the position
};

std::optional<TRecord> TRecordReader::Next()
{
    while (d_position < d_text.size()) {
        TRecord record = Read_Record();
        if (!record.Is_Empty())
            return record;
    }
    return std::nullopt;
}

TRecord TRecordReader::Read_Record()
{
    // A field and the separator after it, in the groups of TFieldGroup.
    static const QRegularExpression field_pattern(
        QStringLiteral(R"regex((?:"([^"]*+(?:""[^"]*+)*+)"|([^",\r\n]*+))(,|\r\n?|\n|\z)?)regex"));
    TRecord record;
    record.line = d_line;
    QRegularExpressionMatch field;
    do {
        // Checking the whole text for each field would take quadratic time.
        field = field_pattern.match(d_text, d_position, QRegularExpression::NormalMatch,
                                    QRegularExpression::AnchoredMatchOption |
                                        QRegularExpression::DontCheckSubjectStringMatchOption);
        if (field.capturedStart(Separator) < 0)
            throw TItemTableException(Fault(field), record.line);
        record.fields += field.capturedStart(Quoted_Content) < 0
                             ? field.captured(Plain_Content)
                             : field.captured(Quoted_Content).replace(quote_pair, quote);
        d_position = field.capturedEnd();
        d_line += Line_Ends(field.captured());
    } while (field.capturedRef(Separator) == comma);
    return record;
}

/// Why a field is not followed by a separator.
QString TRecordReader::Fault(const QRegularExpressionMatch& field)
{
    if (field.capturedStart(Quoted_Content) >= 0)
        return tr("characters after a quoted field");
    return field.capturedLength() == 0 ? tr("a quoted field is not closed")
                                       : tr("a quote within an unquoted field");
}

/// Converts records to labels.
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
        throw TItemTableException(tr("there is only one column: columns are separated by commas"),
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
            tr("%1 fields, but there are %2 columns").arg(record.fields.size()).arg(d_field_count),
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
        {QT_TR_NOOP("\"%1\" is not a page number"),
         QT_TR_NOOP("\"%1\" is not a value: expected a whole number"), "",
         QT_TR_NOOP("\"%1\" is not a border: expected none, square, ellipse, triangle or diamond"),
         QT_TR_NOOP("\"%1\" is not an x coordinate: expected a number such as 12.5"),
         QT_TR_NOOP("\"%1\" is not a y coordinate: expected a number such as 12.5")}};
    throw TItemTableException(tr(kinds[column]).arg(field), record.line);
}

/// The text of a table, which must be UTF-8.
QString Decoded(const QByteArray& table)
{
    QTextCodec::ConverterState state(QTextCodec::IgnoreHeader);
    QString text =
        QTextCodec::codecForName("UTF-8")->toUnicode(table.constData(), table.size(), &state);
    if (state.invalidChars == 0 && state.remainingChars == 0)
        return text;
    // The line of the first invalid character.
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
