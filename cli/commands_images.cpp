// Commands that draw pages as PNG images.

#include "cli/commandline.h"
#include "cli/commands.h"
#include "cli/exportjob.h"
#include "cli/files.h"
#include "cli/output.h"
#include "cli/pageview.h"
#include "cli/terminal.h"
#include "cli/translate.h"
#include "src/export/exportnames.h"

#include <QDateTime>
#include <QJsonObject>
#include <QPixmap>

namespace {

const char* const name_option = "name";
const char* const fast_option = "fast";
const char* const jobs_option = "jobs";
const char* const size_option = "size";

constexpr int maximum_jobs = 256;
constexpr int default_thumbnail_size = 128; // pixels
constexpr int maximum_thumbnail_size = 8192;

/// Names the images of an export.
class TImageNames
{
public:
    explicit TImageNames(const TCommandLine& line);

    /// The path of the next image.
    QString Next(const TExportInput& input, const TExportPage& page);

private:
    QString d_folder;
    QString d_pattern; ///< empty for the names that the window gives
    QDateTime d_time = QDateTime::currentDateTime();
    int d_count = 0; ///< of images so far
};

TImageNames::TImageNames(const TCommandLine& line)
    : d_folder(line.Text(CommonOptions::Folder))
    , d_pattern(line.Text(name_option))
{
    if (line.Is_Set(name_option) && !ExportNames::Is_Pattern(d_pattern))
        line.Throw_Invalid_Value(
            name_option, Tr("a file name without \"/\", in which braces contain document, page, "
                            "number or time"));
    Files::Check_Folder(d_folder);
}

QString TImageNames::Next(const TExportInput& input, const TExportPage& page)
{
    ++d_count;
    if (d_pattern.isEmpty())
        return ExportNames::Image_Path(d_folder, page.name, page.page_id, d_time, d_count);
    return ExportNames::Pattern_Path(d_folder, d_pattern,
                                     {Files::Base_Name(input.path), page.name, page.page_id,
                                      page.number, static_cast<int>(input.document.pages.size())},
                                     d_time);
}

/// Adds the images of a document to a job and returns their paths.
QStringList Add_Images(const TExportInput& input, TImageNames* names, TExportJob* job)
{
    QStringList paths;
    for (const TExportPage& page : input.pages) {
        paths += names->Next(input, page);
        job->Add_File(paths.last(), {{QStringLiteral("document"), input.path},
                                     {QStringLiteral("page"), page.number},
                                     {QStringLiteral("name"), page.name}});
    }
    return paths;
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
    TExportJob::Declare(line);
    line->Add_Output_Option(CommonOptions::Folder, QStringLiteral("DIR"),
                            Tr("The folder for the images (required)."));
    line->Add_Option(name_option, QStringLiteral("PATTERN"),
                     Tr("Name the images by a pattern with {document}, {page}, {number} and "
                        "{time}."));
    line->Add_Flag(fast_option,
                   Tr("Compress the images in less time; the files have about the same "
                      "size."));
    line->Add_Option(jobs_option, QStringLiteral("N"),
                     Tr("Encode up to N images at the same time, from 1 to 256; by default as many "
                        "as there are processors."));
    if (!line->Parse())
        return;

    TExportJob job(*line);
    TImageNames names(*line);
    const auto png =
        line->Is_Set(fast_option) ? TPageExporter::TPng::Fast : TPageExporter::TPng::Small;
    const int jobs = line->Is_Set(jobs_option) ? line->Number(jobs_option, 1, maximum_jobs)
                                               : TPngEncoder::Processors();
    job.Run([&](TExportInput* input) {
        const QStringList paths = Add_Images(*input, &names, &job);
        TTerminalProgress progress(Tr("Exporting page %1 of %2"));
        QString problem;
        const TPageView view(&input->document, progress.Report(), job.Has_Halo(), &problem);
        QString last_path;
        const auto path_of = [&](int, int counter) {
            if (counter > 1)
                job.Mark_Written(last_path);
            return last_path = paths.at(counter - 1);
        };
        if (!view.Exporter().Export_Images(input->Page_Ids(), path_of, png, jobs))
            Files::Throw_Write_Error(last_path, problem);
        job.Mark_Written(last_path);
    });
}

void Commands::Thumbnail(TCommandLine* line)
{
    line->Add_Argument(QStringLiteral("FILE"), Tr("The document."));
    line->Add_Output_Option(CommonOptions::Output, QStringLiteral("PNG"),
                            Tr("The PNG image to write (required)."));
    line->Add_Option(size_option, QStringLiteral("N"),
                     Tr("Maximum width and height in pixels; 128 by default."));
    if (!line->Parse())
        return;

    const int edge = line->Is_Set(size_option)
                         ? line->Number(size_option, 1, maximum_thumbnail_size)
                         : default_thumbnail_size;
    Files::Check_Is_No_Input(line->Text(CommonOptions::Output), {line->Argument()});
    const TOutput output(*line, CommonOptions::Output, TOutput::TContent::Binary);
    TDocument document = Files::Load_Pages(line->Argument());
    Files::Check_Images(line->Argument(), document, {1});
    QString problem;
    const TPageView view(&document, nullptr);
    const bool is_written = view.Exporter().Draw_Pages(
        {document.pages.front().page_id}, [&](int, const QPixmap& picture) {
            return TPageExporter::Save_Png(Fitted(picture, edge), output.Path(),
                                           TPageExporter::TPng::Small, &problem);
        });
    if (!is_written)
        Files::Throw_Write_Error(output.Path(), problem);
    output.Finish();
}
