#pragma once

#include <QByteArray>
#include <QStringList>

#include <vector>

/// A row of a findings table.
struct TFindingsRow
{
    int page = 1; ///< number of the page, from 1
    int value = 0;
    QStringList cells; ///< one for each heading
    int line = 1;      ///< of the table, from 1: where the record begins
};

/// A table that says more about labels. A plain value.
struct TFindingsTable
{
    QStringList headings;
    std::vector<TFindingsRow> rows;

    /// Reads a table in comma-separated values, such as ItemTable writes with columns added. The
    /// columns page and value are required; they and the other columns of ItemTable are found in
    /// upper or lower case. Every further column becomes a heading. Line breaks in cells become
    /// LF. A column without a name has to be empty.
    /// @throws TCsvException
    static TFindingsTable Read(const QByteArray& table);
};
