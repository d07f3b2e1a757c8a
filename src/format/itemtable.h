#pragma once

#include "src/format/csv.h"
#include "src/model/pageitem.h"

#include <QByteArray>
#include <QString>
#include <QStringList>

#include <vector>

/// One label in a table.
struct TItemRow
{
    int page = 1;        ///< number of the page, from 1
    TDataItem item;      ///< of a row without an id, the id is 0
    TCsvPlace place{};   ///< of the page's number in a table that was read
    QStringList cells{}; ///< of further columns, written after the label's own
    // Of a row that was read:
    bool has_id = false;
    bool has_text = false; ///< whether the table has such a column
    bool has_border = false;
};

/// Labels as a table in comma-separated values (RFC 4180, UTF-8), for spreadsheets.
///
/// The first record names the columns: page, value, text, border, x, y, id. Borders are words
/// (none, square, ellipse, triangle, diamond). Numbers have the format of the C locale, regardless
/// of the user's locale.
///
/// Texts are written unchanged, so that reading a table returns the same texts. This includes texts
/// that begin with "=", "+", "-" or "@", which some spreadsheets interpret as formulas. Import the
/// columns of an untrusted table as text.
namespace ItemTable {

/// Returns the names of the columns, in the order in which they are written.
QStringList Columns();

/// Returns the word for a border, or its code as a number if there is none.
QString Border_Text(int code);

/// Returns a position for messages: "12.5,3".
QString Position_Text(const QPointF& position);

/// Writes a table with a header record; every line ends with CR LF. Coordinates have as many digits
/// as needed to read back the same number.
/// @param headings  of the rows' further cells.
QByteArray Write(const std::vector<TItemRow>& rows, const QStringList& headings = {},
                 QChar separator = Csv::Comma);

enum class TIds {
    Read,
    Ignore ///< the table may be one of another program, with other ids
};

/// Reads a table whose lines end with CR LF, LF or CR. Skips a byte order mark and records whose
/// fields are all empty. The header record names the columns in any order and in upper or lower
/// case. Other columns are ignored, and so are blanks around names, numbers and borders. page,
/// value, x and y are required; text, border and id are optional, and their fields may be empty. A
/// border may also be a code (0, 1, 2, 4, 8).
/// @param page_names  of the document, in order: a page may be given by its name, too.
/// @throws TCsvException
std::vector<TItemRow> Read(const QByteArray& table, QChar separator = Csv::Comma,
                           const QStringList& page_names = {}, TIds ids = TIds::Read);

/// The number of the page that a field gives by its number or its name.
/// @throws TCsvException if it is neither, or if several pages have the name.
int Page_Number(const TCsvRecord& record, int index, const QStringList& page_names);

} // namespace ItemTable
