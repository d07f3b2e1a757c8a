// The command that exports PDF reports.

#include "cli/commandline.h"
#include "cli/commands.h"
#include "cli/errors.h"
#include "cli/exportjob.h"
#include "cli/files.h"
#include "cli/findingsoptions.h"
#include "cli/output.h"
#include "cli/pageview.h"
#include "cli/terminal.h"
#include "cli/translate.h"
#include "src/export/findingspainter.h"

#include <QDir>
#include <QJsonObject>

#include <array>
#include <optional>

namespace {

const char* const orientation_option = "orientation";
const char* const resolution_option = "resolution";
const char* const footer_option = "footer";
const char* const no_footer_option = "no-footer";
const char* const page_count_option = "page-count";
const char* const bookmarks_option = "bookmarks";
const char* const list_option = "list";

constexpr std::array<TOptionValue, 4> orientations = {{
    {"portrait", 0},
    {"landscape", 1},
    {"0", 0},
    {"1", 1},
}};

/// The values with "DPI" are the texts of the settings panel.
constexpr std::array<TOptionValue, 12> resolutions = {{
    {"96", 1},
    {"180", 2},
    {"276", 3},
    {"372", 4},
    {"96 DPI", 1},
    {"180 DPI", 2},
    {"276 DPI", 3},
    {"372 DPI", 4},
    {"1", 1},
    {"2", 2},
    {"3", 3},
    {"4", 4},
}};

constexpr int default_orientation = 0;
constexpr int default_resolution = 2;

void Add_Layout_Options(TCommandLine* line)
{
    line->Add_Option(orientation_option, QStringLiteral("ORIENTATION"),
                     Tr("Page orientation: portrait (default) or landscape."));
    line->Add_Option(
        resolution_option, QStringLiteral("DPI"),
        Tr("Resolution as in the window: 96, 180 (default), 276 or 372, or its number from 1 to "
           "4."));
    line->Add_Option(CommonOptions::Header_1, QStringLiteral("TEXT"),
                     Tr("First header line; by default the document's own."));
    line->Add_Option(CommonOptions::Header_2, QStringLiteral("TEXT"),
                     Tr("Second header line; by default the document's own."));
    line->Add_Option(footer_option, QStringLiteral("TEXT"),
                     Tr("Text at the left of the footer, instead of the program's name."));
    line->Add_Flag(no_footer_option, Tr("Omit the footer."));
    line->Add_Flag(page_count_option, Tr("Number the pages as in \"Page 3 of 12\"."));
}

void Add_Options(TCommandLine* line)
{
    TExportJob::Declare(line);
    line->Add_Option(CommonOptions::Output, QStringLiteral("FILE"), Tr("The report to write."));
    line->Add_Option(CommonOptions::Folder, QStringLiteral("DIR"),
                     Tr("The folder for the reports, named after the documents; instead of "
                        "--output."));
    line->Add_Force_Flag();
    Add_Layout_Options(line);
    line->Add_Option(CommonOptions::Title, QStringLiteral("TEXT"),
                     Tr("Title in the properties of the PDF file."));
    line->Add_Flag(bookmarks_option,
                   Tr("Add a bookmark for each page, with its name, and for the list."));
    line->Add_Flag(list_option, Tr("Append the list of findings."));
    FindingsOptions::Add(line);
}

/// Checks which options are used together.
void Check_Options(const TCommandLine& line)
{
    line.Exclude(CommonOptions::Output, CommonOptions::Folder);
    line.Exclude(footer_option, no_footer_option);
    line.Exclude(page_count_option, no_footer_option);
    if (line.Text(CommonOptions::Output) == Files::Standard_Stream &&
        line.Is_Set(CommonOptions::Json))
        throw TUsageError{Tr("Standard output can be used only once.")};
    const bool has_folder = line.Is_Set(CommonOptions::Folder);
    if (!has_folder && !line.Is_Set(CommonOptions::Output))
        throw TUsageError{Tr("Missing option 'output' or 'folder'.")};
    line.Require(has_folder ? CommonOptions::Folder : CommonOptions::Output);
    const bool has_several = line.Arguments().size() > 1;
    if (has_several && !has_folder)
        throw TUsageError{Tr("Several documents need option 'folder'.")};
    if (line.Is_Set(CommonOptions::Findings) && !line.Is_Set(list_option))
        throw TUsageError{Tr("Option 'findings' needs option 'list'.")};
    if (line.Is_Set(CommonOptions::Findings) && has_several)
        throw TUsageError{Tr("Option 'findings' is for one document.")};
}

TReportOptions Report_Options(const TCommandLine& line, const TAppearance& appearance)
{
    TReportOptions options{default_orientation, default_resolution, appearance.header_1,
                           appearance.header_2};
    if (line.Is_Set(orientation_option))
        options.orientation = line.Code(orientation_option, orientations);
    if (line.Is_Set(resolution_option))
        options.resolution = line.Code(resolution_option, resolutions);
    if (line.Is_Set(CommonOptions::Header_1))
        options.header_1 = line.Text(CommonOptions::Header_1);
    if (line.Is_Set(CommonOptions::Header_2))
        options.header_2 = line.Text(CommonOptions::Header_2);
    return options;
}

/// Everything else that a report has.
TReportExtras Report_Extras(const TCommandLine& line, const TFindings& findings)
{
    TReportExtras extras;
    if (line.Is_Set(footer_option))
        extras.footer.text = line.Text(footer_option);
    extras.footer.is_drawn = !line.Is_Set(no_footer_option);
    extras.has_page_count = line.Is_Set(page_count_option);
    extras.title = line.Text(CommonOptions::Title);
    if (line.Is_Set(bookmarks_option)) {
        for (const TFindingsPage& page : findings.pages)
            extras.bookmarks += page.Title();
        if (line.Is_Set(list_option))
            extras.bookmarks += Tr("Findings");
    }
    if (line.Is_Set(list_option))
        extras.list = &findings;
    return extras;
}

/// The path of a document's report in the folder.
QString Path_In_Folder(const TCommandLine& line, const QString& document)
{
    const QString folder = line.Text(CommonOptions::Folder);
    return QDir(folder).filePath(Files::Base_Name(document) + QStringLiteral(".pdf"));
}

/// The labels of the chosen pages.
TFindings Chosen_Findings(const TCommandLine& line, const TExportInput& input)
{
    QSet<int> numbers;
    for (const TExportPage& page : input.pages)
        numbers += page.number;
    const TFindings all = FindingsOptions::Load(line, input.document, numbers);
    if (all.headings.size() > TFindingsPainter::Maximum_Headings)
        throw TJobError{line.Text(CommonOptions::Findings),
                        Tr("has %1 columns for the list; a report has room for %2")
                            .arg(all.headings.size())
                            .arg(TFindingsPainter::Maximum_Headings)};
    TFindings chosen{all.headings, {}};
    for (const TExportPage& page : input.pages)
        chosen.pages.push_back(all.pages[static_cast<std::size_t>(page.number) - 1]);
    return chosen;
}

void Export_Report(const TCommandLine& line, const QString& path, TExportJob* job,
                   TExportInput* input)
{
    const TFindings findings = Chosen_Findings(line, *input);
    TTerminalProgress progress(Tr("Exporting page %1 of %2"));
    QString problem;
    const TPageView view(&input->document, progress.Report(), job->Has_Halo(), &problem);
    const TPageExporter::TOutcome outcome = view.Exporter().Export_Pdf(
        path, input->Page_Ids(), Report_Options(line, input->document.appearance),
        Report_Extras(line, findings));
    if (outcome != TPageExporter::TOutcome::Complete)
        Files::Throw_Write_Error(path, problem);
    job->Mark_Written(path);
}

} // namespace

void Commands::Export_Pdf(TCommandLine* line)
{
    Add_Options(line);
    if (!line->Parse())
        return;

    Check_Options(*line);
    Report_Options(*line, TAppearance()); // throws for invalid values
    const bool has_folder = line->Is_Set(CommonOptions::Folder);
    FindingsOptions::Check(*line, has_folder ? Path_In_Folder(*line, line->Arguments().at(0))
                                             : line->Text(CommonOptions::Output));
    TExportJob job(*line);
    std::optional<TOutput> output;
    if (has_folder) {
        Files::Check_Folder(line->Text(CommonOptions::Folder));
    } else {
        Files::Check_Is_No_Input(line->Text(CommonOptions::Output), line->Arguments());
        output.emplace(*line, CommonOptions::Output, TOutput::TContent::Binary);
    }
    job.Run([&](TExportInput* input) {
        const QString path = output ? output->Path() : Path_In_Folder(*line, input->path);
        if (!output || !output->Is_Standard_Output())
            job.Add_File(path, {{QStringLiteral("document"), input->path},
                                {QStringLiteral("pages"), static_cast<int>(input->pages.size())}});
        Export_Report(*line, path, &job, input);
    });
    if (output)
        output->Finish();
}
