#pragma once

#include <QString>

#include <vector>

struct TFinding;
struct TFindings;
struct TFindingsPage;

/// The list of findings as an HTML table, one body for each page with labels.
class TFindingsList
{
public:
    explicit TFindingsList(const TFindings& findings);

    /// The table's start with its heading row.
    QString Begin() const;
    /// The body of a page; empty for a page without labels.
    /// @param first_number  of the page's first label in the document, from 1.
    /// @param is_on_sheet   for each label whether it can be seen on the page.
    QString Page(const TFindingsPage& page, int first_number,
                 const std::vector<bool>& is_on_sheet) const;
    /// The table's end.
    static QString End();

private:
    int Column_Count() const;
    QString Row(const TFinding& finding, int number, bool is_on_sheet) const;

    const TFindings& d_findings;
    bool d_has_texts;
};
