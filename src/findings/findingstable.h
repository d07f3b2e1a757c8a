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

/// A table with further information about labels. A plain value.
struct TFindingsTable
{
    QStringList headings;
    std::vector<TFindingsRow> rows;

    /// Reads a table in comma-separated values, for example one by ItemTable with added columns.
    /// The columns page and value are required. Their names and those of the other columns of
    /// ItemTable may be in upper or lower case. Every further column becomes a heading. Line breaks
    /// in cells become LF. A column without a name must be empty.
    /// @param page_names  of the document, in order: a page may be given by its name, too.
    /// @throws TCsvException
    static TFindingsTable Read(const QByteArray& table, const QStringList& page_names = {});
};
