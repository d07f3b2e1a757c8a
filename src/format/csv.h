#pragma once

#include <QByteArray>
#include <QString>
#include <QStringList>

#include <vector>

/// A place in a table.
struct TCsvPlace
{
    int line = 1;   ///< from 1
    int column = 1; ///< in characters, from 1
};

/// One record of a table. It has at least one field.
struct TCsvRecord
{
    QStringList fields;
    std::vector<TCsvPlace> places; ///< where each field begins

    /// Where a field begins, or where the record does if the index is negative.
    TCsvPlace Place(int index = -1) const
    {
        return places[static_cast<std::size_t>(index < 0 ? 0 : index)];
    }
    int Line() const { return Place().line; }
};

/// A table that cannot be read. Thrown by value.
class TCsvException
{
public:
    TCsvException(const QString& message, const TCsvPlace& place)
        : d_message(message)
        , d_place(place)
    {
    }

    QString Message() const { return d_message; }
    /// "line 3, column 7: message".
    QString Placed_Message() const;
    /// Where the faulty field or record begins.
    TCsvPlace Place() const { return d_place; }

private:
    QString d_message;
    TCsvPlace d_place;
};

/// Tables in comma-separated values (RFC 4180, UTF-8), or with another separator.
namespace Csv {

constexpr QLatin1Char Comma(',');
constexpr QLatin1Char Tab('\t'); ///< in tables that spreadsheets copy and paste

/// The records of a table. There is at least one, and the first has several fields. Lines end with
/// CR LF, LF or CR. Skips a byte order mark, empty lines, and records with nothing but empty
/// fields.
/// @throws TCsvException
std::vector<TCsvRecord> Read(const QByteArray& table, QChar separator = Comma);

/// Returns fields as a line that ends with CR LF, quoted where necessary.
QString Line(const QStringList& fields, QChar separator = Comma);

} // namespace Csv
