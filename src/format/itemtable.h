#pragma once

#include "src/model/pageitem.h"

#include <QByteArray>
#include <QString>

#include <vector>

/// One label in a table.
struct TItemRow
{
    int page = 1;   ///< number of the page, from 1
    TDataItem item; ///< its id is not part of the table
    int line = 0;   ///< of a table that was read, from 1: where the record begins
};

/// What ItemTable::Read throws, by value.
class TItemTableException
{
public:
    TItemTableException(const QString& message, int line)
        : d_message(message)
        , d_line(line)
    {
    }

    QString Message() const { return d_message; }
    /// Of the table, from 1: where the record begins that cannot be read.
    int Line() const { return d_line; }

private:
    QString d_message;
    int d_line;
};

/// Labels as a table in comma-separated values (RFC 4180, UTF-8), for spreadsheets.
///
/// The first record names the columns: page, value, text, border, x, y. Borders are words (none,
/// square, ellipse, triangle, diamond), numbers are in the C locale whatever the user's is.
///
/// Texts are written as they are, also those that begin with "=", "+", "-" or "@", which some
/// spreadsheets take for a formula: what goes out is what comes back. Who opens a table from
/// somebody else in a spreadsheet should import its columns as text.
namespace ItemTable {

/// A table with a header record; every line ends with CR LF. Coordinates have as many digits as it
/// takes to read the same number back.
QByteArray Write(const std::vector<TItemRow>& rows);

/// Reads a table whose lines end with CR LF, LF or CR; a byte order mark before it is passed over,
/// and so are empty lines and records with nothing but empty fields. Columns are found by their
/// names in the header record, in any order and in upper or lower case; blanks around names,
/// numbers and borders do not matter, nor do other columns. page, value, x and y are required. text
/// and border may be left out as columns and may be empty: no text, no border. A border may also be
/// a code (0, 1, 2, 4, 8). The labels' ids are 0.
/// @throws TItemTableException
std::vector<TItemRow> Read(const QByteArray& table);

} // namespace ItemTable
