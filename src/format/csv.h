#pragma once

#include <QByteArray>
#include <QString>
#include <QStringList>

#include <vector>

/// One record of a table.
struct TCsvRecord
{
    QStringList fields;
    int line = 1; ///< in which the record begins, from 1
};

/// A table that cannot be read. Thrown by value.
class TCsvException
{
public:
    TCsvException(const QString& message, int line)
        : d_message(message)
        , d_line(line)
    {
    }

    QString Message() const { return d_message; }
    /// The line in which the faulty record begins, from 1.
    int Line() const { return d_line; }

private:
    QString d_message;
    int d_line;
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
