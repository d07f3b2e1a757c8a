// What a document is made into: page images, a report, a thumbnail.

#include "cli/commandline.h"
#include "cli/commands.h"
#include "cli/errors.h"
#include "cli/files.h"
#include "cli/pageview.h"
#include "cli/terminal.h"
#include "cli/words.h"
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
const char* const size_option = "size";

constexpr std::array<TOptionText, 4> orientations = {{
    {"portrait", 0},
    {"landscape", 1},
    {"0", 0},
    {"1", 1},
}};

/// The texts are those of the settings panel.
constexpr std::array<TOptionText, 12> resolutions = {{
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

constexpr int default_thumbnail = 128; // pixels
constexpr int largest_thumbnail = 8192;

void Take_Document(TCommandLine* line)
{
    line->Take_Arguments(QStringLiteral("FILE"), Translated("The document."));
}

/// A document with something to draw.
TDocument Load_Pages(const QString& path)
{
    TDocument document = Files::Load(path);
    if (document.pages.empty())
        throw TJobError{path, Translated("has no pages")};
    return document;
}

/// A path for each page, as the window names the files.
QStringList Image_Paths(const TDocument& document, const QString& folder)
{
    const QDateTime time = QDateTime::currentDateTime();
    QStringList paths;
    for (const TNamedPage& page : document.pages)
        paths += ExportNames::Image_Path(folder, page.name, page.page_id, time, paths.size() + 1);
    return paths;
}

/// Undoes an export that did not come to its end. What was replaced cannot be brought back.
void Remove_Files(const QStringList& paths)
{
    for (const QString& path : paths)
        QFile::remove(path);
}

void Take_Report_Options(TCommandLine* line)
{
    line->Take_Option(orientation_option, QStringLiteral("ORIENTATION"),
                      Translated("portrait or landscape; portrait by default."));
    line->Take_Option(
        resolution_option, QStringLiteral("DPI"),
        Translated("96, 180, 276 or 372, or the number of one of them from 1 to 4; 180 "
                   "by default."));
    line->Take_Option(header_1_option, QStringLiteral("TEXT"),
                      Translated("First header line; that of the document by default."));
    line->Take_Option(header_2_option, QStringLiteral("TEXT"),
                      Translated("Second header line; that of the document by default."));
}

/// The report's settings that do not depend on the document.
TReportOptions Report_Settings(const TCommandLine& line)
{
    TReportOptions settings{default_orientation, default_resolution, QString(), QString()};
    if (line.Is_Set(orientation_option))
        settings.orientation = line.Code(orientation_option, orientations);
    if (line.Is_Set(resolution_option))
        settings.resolution = line.Code(resolution_option, resolutions);
    return settings;
}

QPixmap Fitted(const QPixmap& picture, int edge)
{
    // Small pictures are not blown up.
    if (picture.width() <= edge && picture.height() <= edge)
        return picture;
    const QSize size = picture.size().scaled(edge, edge, Qt::KeepAspectRatio);
    return picture.scaled(size.expandedTo(QSize(1, 1)), Qt::IgnoreAspectRatio,
                          Qt::SmoothTransformation);
}

} // namespace

void Commands::Export_Images(TCommandLine* line)
{
    Take_Document(line);
    line->Take_Output(folder_option, QStringLiteral("DIR"),
                      Translated("The folder for the images (required)."));
    if (!line->Parse())
        return;

    const QString folder = line->Text(folder_option);
    if (!QFileInfo(folder).isDir())
        throw TJobError{folder, Translated("is no folder")};
    TDocument document = Load_Pages(line->Argument());
    const QStringList paths = Image_Paths(document, folder);
    QStringList new_paths;
    for (const QString& path : paths) {
        Files::Check_Output(path, line->Is_Set(Options::Force));
        if (!QFileInfo::exists(path))
            new_paths += path;
    }

    TTerminalProgress progress(Translated("Exporting page %1 of %2"));
    const TPageView view(&document, progress.Steps());
    QString last_path;
    const bool is_done = view.Exporter().Export_Images(
        document.Page_Ids(), [&](int, int counter) { return last_path = paths.at(counter - 1); });
    if (is_done)
        return;
    Remove_Files(new_paths);
    Files::Fail_To_Write(last_path);
}

void Commands::Export_Pdf(TCommandLine* line)
{
    Take_Document(line);
    line->Take_Output(Options::Output, QStringLiteral("FILE"),
                      Translated("The report to write (required)."));
    Take_Report_Options(line);
    if (!line->Parse())
        return;

    TReportOptions settings = Report_Settings(*line);
    const QString output = line->Text(Options::Output);
    Files::Check_Output(output, line->Is_Set(Options::Force));
    Files::Check_Is_Other(output, {line->Argument()});
    TDocument document = Load_Pages(line->Argument());
    settings.header_1 =
        line->Is_Set(header_1_option) ? line->Text(header_1_option) : document.appearance.header_1;
    settings.header_2 =
        line->Is_Set(header_2_option) ? line->Text(header_2_option) : document.appearance.header_2;

    TTerminalProgress progress(Translated("Exporting page %1 of %2"));
    const TPageView view(&document, progress.Steps());
    if (view.Exporter().Export_Pdf(output, document.Page_Ids(), settings) !=
        TPageExporter::TOutcome::Complete)
        Files::Fail_To_Write(output);
}

void Commands::Thumbnail(TCommandLine* line)
{
    Take_Document(line);
    line->Take_Output(Options::Output, QStringLiteral("PNG"),
                      Translated("The picture to write (required)."));
    line->Take_Option(size_option, QStringLiteral("N"),
                      Translated("Largest width and height in pixels; 128 by default."));
    if (!line->Parse())
        return;

    const int edge = line->Is_Set(size_option) ? line->Number(size_option, 1, largest_thumbnail)
                                               : default_thumbnail;
    const QString output = line->Text(Options::Output);
    Files::Check_Output(output, line->Is_Set(Options::Force));
    Files::Check_Is_Other(output, {line->Argument()});
    TDocument document = Load_Pages(line->Argument());
    const TPageView view(&document, nullptr);
    const bool is_written = view.Exporter().Draw_Pages(
        {document.pages.front().page_id}, [&](int, const QPixmap& picture) {
            return TPageExporter::Save_Png(Fitted(picture, edge), output);
        });
    if (!is_written)
        Files::Fail_To_Write(output);
}
