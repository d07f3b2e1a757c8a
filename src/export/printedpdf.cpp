#include "src/export/printedpdf.h"

#include <QByteArray>
#include <QFile>
#include <QList>
#include <QRegularExpression>

#include <optional>

namespace {

/// The offset of the cross-reference table; nothing if the file is truncated.
std::optional<qint64> Table_Offset(QFile* file)
{
    // The last lines are "startxref", the offset of the table, and the end marker.
    constexpr qint64 tail_length = 64;
    if (!file->seek(qMax<qint64>(0, file->size() - tail_length)))
        return std::nullopt;
    const QList<QByteArray> lines = file->readAll().split('\n');
    const int count = lines.size();
    if (count < 4 || !lines.at(count - 1).isEmpty() || lines.at(count - 2) != "%%EOF" ||
        lines.at(count - 4) != "startxref")
        return std::nullopt;
    const QByteArray table = "xref\n";
    bool is_number = false;
    const qint64 offset = lines.at(count - 3).toLongLong(&is_number);
    if (!is_number || !file->seek(offset) || file->read(table.size()) != table)
        return std::nullopt;
    return offset;
}

/// A reference to an object.
QByteArray Reference(int object)
{
    return QByteArray::number(object) + " 0 R";
}

/// A text in UTF-16.
QByteArray Text_String(const QString& text)
{
    QByteArray digits = "FEFF";
    for (const QChar character : text)
        digits += QByteArray::number(character.unicode(), 16).rightJustified(4, '0');
    return '<' + digits + '>';
}

/// The entries of a dictionary.
QByteArray Between_Brackets(const QByteArray& text)
{
    const QByteArray begin = "<<\n";
    const int from = text.indexOf(begin) + begin.size();
    return text.mid(from, text.lastIndexOf(">>") - from);
}

/// Reads objects of a complete file.
class TReader
{
public:
    TReader(QFile* file, qint64 table_offset);

    /// The entries of the dictionary at the end of the table.
    QByteArray Trailer() const { return d_trailer; }
    /// Number of objects.
    int Size() const { return qMax(0, d_table_lines.size() - 1); }
    /// The entries of an object's dictionary; empty if there is none.
    QByteArray Entries(int object) const;
    /// The objects that a dictionary's entry refers to.
    static QList<int> References(const QByteArray& dictionary, const char* key);

private:
    QFile* d_file;
    QList<QByteArray> d_table_lines; ///< one for each object, and an empty one
    QByteArray d_trailer;
};

TReader::TReader(QFile* file, qint64 table_offset)
    : d_file(file)
{
    file->seek(table_offset);
    const QByteArray table = file->readAll();
    const int trailer = table.indexOf("trailer");
    d_trailer = Between_Brackets(table.mid(trailer));
    // Before the objects are "xref" and the range of their numbers.
    d_table_lines = table.left(trailer).split('\n').mid(2);
}

QByteArray TReader::Entries(int object) const
{
    constexpr int offset_length = 10; // digits
    constexpr qint64 longest_line = 1 << 20;
    if (!d_file->seek(d_table_lines.value(object).left(offset_length).toLongLong()))
        return QByteArray();
    QByteArray content;
    while (!d_file->atEnd() && !content.endsWith("endobj\n"))
        content += d_file->readLine(longest_line);
    return Between_Brackets(content);
}

QList<int> TReader::References(const QByteArray& dictionary, const char* key)
{
    // "/Root 3 0 R" or "/Kids [3 0 R 4 0 R]".
    const QRegularExpression entry(
        QStringLiteral("/%1\\s*\\[?([\\s\\dR]+)").arg(QLatin1String(key)));
    static const QRegularExpression reference(QStringLiteral("(\\d+) 0 R"));
    QList<int> objects;
    const QString list = entry.match(QString::fromLatin1(dictionary)).captured(1);
    QRegularExpressionMatchIterator matches = reference.globalMatch(list);
    while (matches.hasNext())
        objects += matches.next().captured(1).toInt();
    return objects;
}

/// Collects new objects, which follow the content of a file.
class TUpdate
{
public:
    /// @param file_size  where the update begins.
    explicit TUpdate(qint64 file_size)
        : d_file_size(file_size)
    {
    }

    /// Adds an object or replaces one.
    /// @param entries  of its dictionary.
    void Add(int object, const QByteArray& entries);
    /// The objects with their cross-reference table.
    /// @param trailer  entries of its dictionary.
    QByteArray Finish(const QByteArray& trailer) const;

private:
    qint64 d_file_size;
    QByteArray d_objects;
    QByteArray d_table = "xref\n0 1\n0000000000 65535 f \n";
};

void TUpdate::Add(int object, const QByteArray& entries)
{
    constexpr int offset_length = 10;
    const QByteArray offset = QByteArray::number(d_file_size + d_objects.size());
    d_table += QByteArray::number(object) + " 1\n" + offset.rightJustified(offset_length, '0') +
               " 00000 n \n";
    d_objects += QByteArray::number(object) + " 0 obj\n<<\n" + entries + ">>\nendobj\n";
}

QByteArray TUpdate::Finish(const QByteArray& trailer) const
{
    return d_objects + d_table + "trailer\n<<\n" + trailer + ">>\nstartxref\n" +
           QByteArray::number(d_file_size + d_objects.size()) + "\n%%EOF\n";
}

/// The entry for a neighbour of a bookmark, if it exists.
QByteArray Neighbour(const char* key, int object, bool exists)
{
    return exists ? '/' + QByteArray(key) + ' ' + Reference(object) + '\n' : QByteArray();
}

} // namespace

bool PrintedPdf::Is_Complete(const QString& path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) && Table_Offset(&file);
}

bool PrintedPdf::Add_Bookmarks(const QString& path, const QStringList& titles)
{
    QFile file(path);
    const auto table_offset = file.open(QIODevice::ReadWrite) ? Table_Offset(&file) : std::nullopt;
    if (!table_offset)
        return false;
    const TReader reader(&file, *table_offset);
    const int catalog = TReader::References(reader.Trailer(), "Root").value(0);
    const QByteArray catalog_entries = reader.Entries(catalog);
    const int page_tree = TReader::References(catalog_entries, "Pages").value(0);
    const QList<int> pages = TReader::References(reader.Entries(page_tree), "Kids");
    const int count = titles.size();
    if (count == 0 || pages.size() < count)
        return false;

    const int outline = reader.Size();
    const int first = outline + 1;
    const int last = outline + count;
    TUpdate update(file.size());
    update.Add(catalog,
               catalog_entries + "/Outlines " + Reference(outline) + "\n/PageMode /UseOutlines\n");
    update.Add(outline, "/Type /Outlines\n/First " + Reference(first) + "\n/Last " +
                            Reference(last) + "\n/Count " + QByteArray::number(count) + '\n');
    for (int place = 0; place < count; ++place) {
        const int object = first + place;
        update.Add(object, "/Title " + Text_String(titles.at(place)) + "\n/Parent " +
                               Reference(outline) + '\n' +
                               Neighbour("Prev", object - 1, object > first) +
                               Neighbour("Next", object + 1, object < last) + "/Dest [" +
                               Reference(pages.at(place)) + " /Fit]\n");
    }
    QByteArray trailer = reader.Trailer();
    trailer.replace("/Size " + QByteArray::number(reader.Size()),
                    "/Size " + QByteArray::number(last + 1));
    const QByteArray bytes =
        update.Finish(trailer + "/Prev " + QByteArray::number(*table_offset) + '\n');
    return file.seek(file.size()) && file.write(bytes) == bytes.size() && file.flush();
}
