#pragma once

#include "src/model/namedpage.h"
#include "src/model/pageitem.h"

#include <QSet>
#include <QString>
#include <QStringList>

#include <vector>

class TData;
struct TFindingsTable;

/// A label and its cells in the list of findings.
struct TFinding
{
    TDataItem label;
    QStringList cells; ///< one for each heading; all empty for a label without a row
};

/// The labels of one page, in document order.
struct TFindingsPage
{
    int page_id = 0;
    int number = 1; ///< in the document, from 1
    QString name;   ///< may be empty
    std::vector<TFinding> rows;

    /// The name, or "Page 3" for a page without one.
    QString Title() const;
};

/// The list of findings: every label of a document in document order, with the cells that a table
/// adds. A plain value.
struct TFindings
{
    QStringList headings; ///< of the cells; empty without a table
    std::vector<TFindingsPage> pages;

    /// Number of labels.
    int Count() const;
    /// Whether any label has a text. Otherwise the list needs no column for texts.
    bool Has_Texts() const;
};

namespace Findings {

/// The labels of a document without further cells.
/// @param pages  in document order.
TFindings Of(const TData& data, const std::vector<TNamedPage>& pages);

/// Adds the headings and cells of a table. Rows and labels are matched by page number and label
/// value. Labels with the same value get the rows in order; if there are too few rows, the
/// remaining labels get the last one.
/// @param checked_pages  numbers of the pages to check; all if empty.
/// @return warnings about the pages to check: a row without a label, a label without a row, a value
///         that a page has more than once. Also a warning for each row of a page that does not
///         exist.
QStringList Join(const TFindingsTable& table, TFindings* findings,
                 const QSet<int>& checked_pages = {});

} // namespace Findings
