#include "cli/findingsoptions.h"

#include "cli/commandline.h"
#include "cli/errors.h"
#include "cli/files.h"
#include "cli/terminal.h"
#include "cli/translate.h"
#include "src/findings/findingstable.h"
#include "src/format/csv.h"

namespace {

const char* const strict_option = "strict";

TFindingsTable Read_Table(const QString& path, const QStringList& page_names)
{
    try {
        return TFindingsTable::Read(Files::Read(path), page_names);
    } catch (const TCsvException& exception) {
        throw TJobError{path, exception.Placed_Message()};
    }
}

} // namespace

void FindingsOptions::Add(TCommandLine* line)
{
    line->Add_Option(CommonOptions::Findings, QStringLiteral("TABLE.csv"),
                     Tr("A table with the columns page and value; its other columns are "
                        "added to the list."));
    line->Add_Flag(strict_option, Tr("Fail when rows of the table and labels do not match."));
}

void FindingsOptions::Check(const TCommandLine& line, const QString& output)
{
    const bool has_table = line.Is_Set(CommonOptions::Findings);
    if (has_table)
        line.Require(CommonOptions::Findings);
    if (line.Is_Set(strict_option) && !has_table)
        throw TUsageError{Tr("Option 'strict' needs option 'findings'.")};
    if (has_table && !output.isEmpty())
        Files::Check_Is_No_Input(output, {line.Text(CommonOptions::Findings)});
}

TFindings FindingsOptions::Load(const TCommandLine& line, const TDocument& document,
                                const QSet<int>& checked_pages)
{
    TFindings findings = Findings::Of(document.data, document.pages);
    if (!line.Is_Set(CommonOptions::Findings))
        return findings;
    const QString path = line.Text(CommonOptions::Findings);
    const bool is_strict = line.Is_Set(strict_option);
    const QStringList warnings =
        Findings::Join(Read_Table(path, document.Page_Names()), &findings, checked_pages);
    for (const QString& warning : warnings)
        is_strict ? Terminal::Print_Error(path, warning) : Terminal::Print_Warning(path, warning);
    if (is_strict && !warnings.isEmpty())
        throw TReportedError();
    return findings;
}
