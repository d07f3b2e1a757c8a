// Commands that draw pages: images, reports and thumbnails.

#include "cli/commandline.h"
#include "cli/commands.h"
#include "cli/errors.h"
#include "cli/files.h"
#include "cli/findingsoptions.h"
#include "cli/pageview.h"
#include "cli/terminal.h"
#include "cli/translate.h"
#include "src/export/exportnames.h"

#include <QDir>
#include <QFileInfo>
#include <QPixmap>

#include <array>

namespace {

const char* const folder_option = "folder";
const char* const orientation_option = "orientation";
const char* const resolution_option = "resolution";
const char* const header_1_option = "header-1";
const char* const header_2_option = "header-2";
const char* const list_option = "list";
const char* const size_option = "size";

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

constexpr int default_thumbnail_size = 128; // pixels
constexpr int maximum_thumbnail_size = 8192;

void Add_Document_Argument(TCommandLine* line)
{
    line->Add_Argument(QStringLiteral("FILE"), Tr("The document."));
}

/// Loads a document. Throws if it has no pages to draw.
TDocument Load_Pages(const QString& path)
{
    TDocument document = Files::Load(path);
    if (document.pages.empty())
        throw TJobError{path, Tr("has no pages")};
    return document;
}

/// Returns the path of each page's image. The window uses the same names.
QStringList Image_Paths(const TDocument& document, const QString& folder)
{
    const QDateTime time = QDateTime::currentDateTime();
    QStringList paths;
    for (const TNamedPage& page : document.pages)
        paths += ExportNames::Image_Path(folder, page.name, page.page_id, time, paths.size() + 1);
    return paths;
}

/// Removes the new files of a failed export. Files that it has overwritten cannot be restored.
void Remove_Files(const QStringList& paths)
{
    for (const QString& path : paths)
        QFile::remove(path);
}

void Add_Report_Options(TCommandLine* line)
{
    line->Add_Option(orientation_option, QStringLiteral("ORIENTATION"),
                     Tr("Page orientation: portrait (default) or landscape."));
    line->Add_Option(resolution_option, QStringLiteral("DPI"),
                     Tr("Resolution in dots per inch: 96, 180 (default), 276 or 372, or its number "
                        "from 1 to 4."));
    line->Add_Option(header_1_option, QStringLiteral("TEXT"),
                     Tr("First header line; by default the document's own."));
    line->Add_Option(header_2_option, QStringLiteral("TEXT"),
                     Tr("Second header line; by default the document's own."));
    line->Add_Flag(list_option, Tr("Append the list of findings."));
    FindingsOptions::Add(line);
}

/// Returns the report's settings without the header lines, which may come from the document.
TReportOptions Report_Settings(const TCommandLine& line)
{
    TReportOptions settings{default_orientation, default_resolution, QString(), QString()};
    if (line.Is_Set(orientation_option))
        settings.orientation = line.Code(orientation_option, orientations);
    if (line.Is_Set(resolution_option))
        settings.resolution = line.Code(resolution_option, resolutions);
    return settings;
}

/// Scales a picture down to fit into a square; a smaller picture keeps its size.
QPixmap Fitted(const QPixmap& picture, int edge)
{
    if (picture.width() <= edge && picture.height() <= edge)
        return picture;
    const QSize size = picture.size().scaled(edge, edge, Qt::KeepAspectRatio);
    return picture.scaled(size.expandedTo(QSize(1, 1)), Qt::IgnoreAspectRatio,
                          Qt::SmoothTransformation);
}

} // namespace

void Commands::Export_Images(TCommandLine* line)
{
    Add_Document_Argument(line);
    line->Add_Output_Option(folder_option, QStringLiteral("DIR"),
                            Tr("The folder for the images (required)."));
    if (!line->Parse())
        return;

    const QString folder = line->Text(folder_option);
    if (!QFileInfo(folder).isDir())
        throw TJobError{folder, Tr("is not a folder")};
    TDocument document = Load_Pages(line->Argument());
    const QStringList paths = Image_Paths(document, folder);
    QStringList new_paths;
    for (const QString& path : paths) {
        Files::Check_Output(path, line->Is_Set(CommonOptions::Force));
        if (!QFileInfo::exists(path))
            new_paths += path;
    }

    TTerminalProgress progress(Tr("Exporting page %1 of %2"));
    const TPageView view(&document, progress.Steps());
    QString last_path;
    const bool is_done = view.Exporter().Export_Images(
        document.Page_Ids(), [&](int, int counter) { return last_path = paths.at(counter - 1); });
    if (is_done)
        return;
    Remove_Files(new_paths);
    Files::Throw_Write_Error(last_path);
}

void Commands::Export_Pdf(TCommandLine* line)
{
    Add_Document_Argument(line);
    line->Add_Output_Option(CommonOptions::Output, QStringLiteral("FILE"),
                            Tr("The report to write (required)."));
    Add_Report_Options(line);
    if (!line->Parse())
        return;

    TReportOptions settings = Report_Settings(*line);
    const QString output = line->Text(CommonOptions::Output);
    const bool has_list = line->Is_Set(list_option);
    if (line->Is_Set(CommonOptions::Findings) && !has_list)
        throw TUsageError{Tr("Option 'findings' needs option 'list'.")};
    FindingsOptions::Check(*line, output);
    Files::Check_Output(output, line->Is_Set(CommonOptions::Force));
    Files::Check_Is_No_Input(output, {line->Argument()});
    TDocument document = Load_Pages(line->Argument());
    settings.header_1 =
        line->Is_Set(header_1_option) ? line->Text(header_1_option) : document.appearance.header_1;
    settings.header_2 =
        line->Is_Set(header_2_option) ? line->Text(header_2_option) : document.appearance.header_2;

    const TFindings findings = FindingsOptions::Load(*line, document);

    TTerminalProgress progress(Tr("Exporting page %1 of %2"));
    const TPageView view(&document, progress.Steps());
    if (view.Exporter().Export_Pdf(output, document.Page_Ids(), settings,
                                   has_list ? &findings : nullptr) !=
        TPageExporter::TOutcome::Complete)
        Files::Throw_Write_Error(output);
}

void Commands::Thumbnail(TCommandLine* line)
{
    Add_Document_Argument(line);
    line->Add_Output_Option(CommonOptions::Output, QStringLiteral("PNG"),
                            Tr("The PNG image to write (required)."));
    line->Add_Option(size_option, QStringLiteral("N"),
                     Tr("Maximum width and height in pixels; 128 by default."));
    if (!line->Parse())
        return;

    const int edge = line->Is_Set(size_option)
                         ? line->Number(size_option, 1, maximum_thumbnail_size)
                         : default_thumbnail_size;
    const QString output = line->Text(CommonOptions::Output);
    Files::Check_Output(output, line->Is_Set(CommonOptions::Force));
    Files::Check_Is_No_Input(output, {line->Argument()});
    TDocument document = Load_Pages(line->Argument());
    const TPageView view(&document, nullptr);
    const bool is_written = view.Exporter().Draw_Pages(
        {document.pages.front().page_id}, [&](int, const QPixmap& picture) {
            return TPageExporter::Save_Png(Fitted(picture, edge), output);
        });
    if (!is_written)
        Files::Throw_Write_Error(output);
}
