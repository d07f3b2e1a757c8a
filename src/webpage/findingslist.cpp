#include "src/webpage/findingslist.h"

#include "src/findings/findings.h"
#include "src/webpage/markup.h"

#include <QCoreApplication>

using Markup::Escaped;

namespace {

/// A table with more columns is narrowed for printing.
constexpr int normal_columns = 8;

QString Translated(const char* source)
{
    return QCoreApplication::translate("FindingsList", source);
}

QString Heading(const QString& text)
{
    return QStringLiteral("<th scope=\"col\">") + Escaped(text) + QStringLiteral("</th>");
}

/// A cell whose text has a direction of its own.
QString Cell(const QString& text)
{
    return QStringLiteral("<td dir=\"auto\">") + Escaped(text) + QStringLiteral("</td>");
}

} // namespace

TFindingsList::TFindingsList(const TFindings& findings)
    : d_findings(findings)
    , d_has_texts(findings.Has_Texts())
{
}

QString TFindingsList::Begin() const
{
    QString row = Heading(Translated("No."));
    if (d_has_texts)
        row += Heading(Translated("Label"));
    for (const QString& heading : d_findings.headings)
        row += Heading(heading);
    const QString table = Column_Count() > normal_columns ? QStringLiteral("<table class=\"many\">")
                                                          : QStringLiteral("<table>");
    return table + QStringLiteral("\n<thead><tr>") + row + QStringLiteral("</tr></thead>\n");
}

int TFindingsList::Column_Count() const
{
    return 1 + (d_has_texts ? 1 : 0) + d_findings.headings.size();
}

QString TFindingsList::Page(const TFindingsPage& page, int first_number,
                            const std::vector<bool>& is_on_sheet) const
{
    if (page.rows.empty())
        return QString();
    QString body = QStringLiteral("<tbody>\n<tr class=\"page-row\"><th scope=\"rowgroup\" "
                                  "colspan=\"%1\"><a href=\"#page-%2\">")
                       .arg(Column_Count())
                       .arg(page.number) +
                   Escaped(page.Title()) + QStringLiteral("</a></th></tr>\n");
    for (std::size_t index = 0; index < page.rows.size(); ++index)
        body += Row(page.rows[index], first_number + static_cast<int>(index), is_on_sheet[index]);
    return body + QStringLiteral("</tbody>\n");
}

QString TFindingsList::End()
{
    return QStringLiteral("</table>\n");
}

QString TFindingsList::Row(const TFinding& finding, int number, bool is_on_sheet) const
{
    const QString value = QString::number(finding.label.value);
    QString row =
        QStringLiteral("<tr class=\"finding\" id=\"row-%1\"><th scope=\"row\">").arg(number);
    if (is_on_sheet)
        row +=
            QStringLiteral("<a href=\"#label-%1\">%2</a></th>").arg(QString::number(number), value);
    else
        row += value + QStringLiteral("</th>");
    if (d_has_texts)
        row += Cell(finding.label.text);
    for (const QString& cell : finding.cells)
        row += Cell(cell);
    return row + QStringLiteral("</tr>\n");
}
