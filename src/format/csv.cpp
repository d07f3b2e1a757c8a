#include "src/format/csv.h"

#include <QCoreApplication>
#include <QRegularExpression>
#include <QTextCodec>

#include <algorithm>
#include <iterator>
#include <optional>

namespace {

constexpr char byte_order_mark[] = "\xef\xbb\xbf";
const QChar quote = QLatin1Char('"');
const QLatin1String quote_pair("\"\"");

QString Quoted(const QString& field, QChar separator)
{
    const bool is_plain = std::none_of(field.cbegin(), field.cend(), [separator](QChar character) {
        return character == quote || character == separator || character == QLatin1Char('\n') ||
               character == QLatin1Char('\r');
    });
    if (is_plain)
        return field;
    return quote + QString(field).replace(quote, quote_pair) + quote;
}

/// Number of line ends in a text. CR LF is one.
int Line_Ends(const QString& text)
{
    return text.count(QLatin1Char('\n')) + text.count(QLatin1Char('\r')) -
           text.count(QLatin1String("\r\n"));
}

/// The place where a text ends that begins at a place.
TCsvPlace After(const TCsvPlace& place, const QString& text)
{
    const int line_ends = Line_Ends(text);
    const int last_end =
        qMax(text.lastIndexOf(QLatin1Char('\n')), text.lastIndexOf(QLatin1Char('\r')));
    const QString last_line = text.mid(last_end + 1);
    // A character beyond 16 bits has two code units.
    const auto low_halves =
        std::count_if(last_line.cbegin(), last_line.cend(),
                      [](QChar character) { return character.isLowSurrogate(); });
    const int length = last_line.size() - static_cast<int>(low_halves);
    return {place.line + line_ends, line_ends > 0 ? 1 + length : place.column + length};
}

/// Whether a record has no content. Spreadsheets write commas for an empty row.
bool Is_Empty(const TCsvRecord& record)
{
    return std::all_of(record.fields.cbegin(), record.fields.cend(),
                       [](const QString& field) { return field.isEmpty(); });
}

/// Groups of the pattern of a field.
enum TFieldGroup { Quoted_Content = 1, Plain_Content, Separator };

/// Reads the records of a table one after another.
class TRecordReader
{
    Q_DECLARE_TR_FUNCTIONS(Csv)

public:
    TRecordReader(const QString& text, QChar separator)
        : d_text(text)
        , d_separator(separator)
        , d_field(QStringLiteral(
                      R"regex(\G(?:"([^"]*+(?:""[^"]*+)*+)"|([^"%1\r\n]*+))(%1|\r\n?|\n|\z)?)regex")
                      .arg(separator))
    {
    }

    /// The next record that is not empty; empty at the end.
    std::optional<TCsvRecord> Next();

private:
    TCsvRecord Read_Record();
    static QString Fault(const QRegularExpressionMatch& field);

    const QString d_text;
    const QChar d_separator;
    /// A field at the position and the separator after it, in the groups of TFieldGroup.
    const QRegularExpression d_field;
    int d_position = 0;
    TCsvPlace d_place; ///< of the position
};

std::optional<TCsvRecord> TRecordReader::Next()
{
    while (d_position < d_text.size()) {
        TCsvRecord record = Read_Record();
        if (!Is_Empty(record))
            return record;
    }
    return std::nullopt;
}

TCsvRecord TRecordReader::Read_Record()
{
    TCsvRecord record;
    QRegularExpressionMatch field;
    do {
        // Checking the whole text for each field would take quadratic time.
        field = d_field.match(d_text, d_position, QRegularExpression::NormalMatch,
                              QRegularExpression::DontCheckSubjectStringMatchOption);
        if (field.capturedStart(Separator) < 0)
            throw TCsvException(Fault(field), d_place);
        record.places.push_back(d_place);
        record.fields += field.capturedStart(Quoted_Content) < 0
                             ? field.captured(Plain_Content)
                             : field.captured(Quoted_Content).replace(quote_pair, quote);
        d_position = field.capturedEnd();
        d_place = After(d_place, field.captured());
    } while (field.capturedView(Separator) == d_separator);
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

/// The place of the first character that is not in UTF-8.
TCsvPlace Place_Of_Damage(QByteArray table)
{
    // fromUtf8 replaces invalid bytes with U+FFFD. First remove those that the table contains.
    table.replace("\xef\xbf\xbd", " ");
    const QString text = QString::fromUtf8(table);
    return After({}, text.left(text.indexOf(QChar(QChar::ReplacementCharacter))));
}

/// The text of a table, which must be UTF-8.
QString Decoded(const QByteArray& table)
{
    QTextCodec::ConverterState state(QTextCodec::IgnoreHeader);
    QString text =
        QTextCodec::codecForName("UTF-8")->toUnicode(table.constData(), table.size(), &state);
    if (state.invalidChars == 0 && state.remainingChars == 0)
        return text;
    throw TCsvException(QCoreApplication::translate("Csv", "the table is not in UTF-8"),
                        Place_Of_Damage(table));
}

} // namespace

QString TCsvException::Placed_Message() const
{
    return QCoreApplication::translate("Csv", "line %1, column %2: %3")
        .arg(QString::number(d_place.line), QString::number(d_place.column), d_message);
}

std::vector<TCsvRecord> Csv::Read(const QByteArray& table, QChar separator)
{
    const bool has_mark = table.startsWith(byte_order_mark);
    const int mark_size = static_cast<int>(sizeof(byte_order_mark)) - 1;
    TRecordReader reader(Decoded(has_mark ? table.mid(mark_size) : table), separator);
    std::vector<TCsvRecord> records;
    for (std::optional<TCsvRecord> record = reader.Next(); record; record = reader.Next())
        records.push_back(*record);
    if (records.empty())
        throw TCsvException(QCoreApplication::translate("Csv", "the table is empty"), {});
    if (records.front().fields.size() == 1)
        throw TCsvException(QCoreApplication::translate(
                                "Csv", "there is only one column: columns are separated by commas"),
                            records.front().Place());
    return records;
}

QString Csv::Line(const QStringList& fields, QChar separator)
{
    QStringList quoted;
    std::transform(fields.cbegin(), fields.cend(), std::back_inserter(quoted),
                   [separator](const QString& field) { return Quoted(field, separator); });
    return quoted.join(separator) + QStringLiteral("\r\n");
}
