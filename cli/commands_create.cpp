// Commands that create projects from images and PDFs and renumber labels.

#include "cli/commandline.h"
#include "cli/commands.h"
#include "cli/errors.h"
#include "cli/files.h"
#include "cli/terminal.h"
#include "cli/translate.h"
#include "src/model/imagefiles.h"
#include "src/model/numbering.h"
#include "src/pageinput/inputfile.h"

#include <QDir>
#include <QFileInfo>

#include <algorithm>
#include <array>
#include <limits>
#include <numeric>
#include <vector>

namespace {

const char* const names_option = "names-from-files";
const char* const dpi_option = "dpi";
const char* const pages_option = "pdf-pages";
const char* const stored_option = "as-stored";
const char* const first_option = "first";
const char* const step_option = "over-page";

constexpr std::array<TOptionValue, 4> steps = {{
    {"1", TNumbering::Next_1X},
    {"10", TNumbering::Next_10X},
    {"100", TNumbering::Next_100X},
    {"1000", TNumbering::Next_1000X},
}};

QString Accepted_Formats()
{
    return ImageFiles::Suffixes_And_Pdf().join(QStringLiteral(", "));
}

/// Returns the images and PDFs of a folder in natural order: "page 2" before "page 10".
QStringList Inputs_In(const QString& folder)
{
    QStringList names;
    if (!QFileInfo(folder).isReadable())
        throw TJobError{folder, Tr("cannot be read")};
    // A dangling link counts as an input: an error is better than a missing page.
    const auto is_input = [&folder](const QString& name) {
        const QFileInfo file(QDir(folder).filePath(name));
        return ImageFiles::Is_Image_Or_Pdf_Name(name) && (file.isFile() || !file.exists());
    };
    const QStringList entries = QDir(folder).entryList(QDir::Files | QDir::System, QDir::Name);
    std::copy_if(entries.cbegin(), entries.cend(), std::back_inserter(names), is_input);
    if (names.isEmpty())
        throw TJobError{
            folder, Tr("contains no images or PDFs; accepted formats: %1").arg(Accepted_Formats())};
    ImageFiles::Sort(&names);
    QStringList paths;
    for (const QString& name : std::as_const(names))
        paths += QDir(folder).filePath(name);
    return paths;
}

/// Replaces each folder with the images and PDFs in it.
QStringList Expand_Folders(const QStringList& arguments)
{
    QStringList paths;
    for (const QString& path : arguments) {
        if (QFileInfo(path).isDir())
            paths += Inputs_In(path);
        else
            paths += path;
    }
    return paths;
}

void Add_Input_Options(TCommandLine* line)
{
    line->Add_Option(dpi_option, QStringLiteral("N"),
                     Tr("Resolution for the pages of PDFs, from %1 to %2 dots per inch; %3 by "
                        "default.")
                         .arg(TPdfFile::Lowest_Resolution)
                         .arg(TPdfFile::Highest_Resolution)
                         .arg(TPdfFile::Default_Resolution));
    line->Add_Option(pages_option, QStringLiteral("PAGES"),
                     Tr("Pages to take from each PDF, for example 1-3,7; all by default."));
    line->Add_Flag(stored_option, Tr("Do not rotate images as their EXIF orientation says."));
}

TInputOptions Input_Options(const TCommandLine& line)
{
    TInputOptions options;
    if (line.Is_Set(dpi_option))
        options.resolution =
            line.Number(dpi_option, TPdfFile::Lowest_Resolution, TPdfFile::Highest_Resolution);
    if (line.Is_Set(pages_option))
        options.pdf_pages = line.Pages(pages_option);
    if (line.Is_Set(stored_option))
        options.orientation = TPageImage::TOrientation::As_Stored;
    return options;
}

/// Counts the pages of all files.
std::vector<TInputFile> Open_Inputs(const QStringList& paths, const TInputOptions& options)
{
    std::vector<TInputFile> files;
    files.reserve(static_cast<std::size_t>(paths.size()));
    for (const QString& path : paths) {
        files.emplace_back(path, options);
        const QString fault = files.back().Open();
        if (!fault.isEmpty())
            throw TJobError{path, fault};
    }
    return files;
}

/// Reads a page.
TInputPage Read_Page(int index, TInputFile* file)
{
    TInputPage page = file->Read(index);
    if (!page.image)
        throw TJobError{file->Path(), page.message};
    if (!page.message.isEmpty())
        Terminal::Print_Error(file->Path(), Tr("warning: ") + page.message);
    return page;
}

/// Reads all pages of all files.
std::vector<TInputPage> Read_Pages(std::vector<TInputFile>* files)
{
    const int total =
        std::accumulate(files->cbegin(), files->cend(), 0, [](int count, const TInputFile& file) {
            return count + file.Page_Count();
        });
    TTerminalProgress progress(Tr("Reading page %1 of %2"));
    std::vector<TInputPage> pages;
    for (TInputFile& file : *files) {
        for (int index = 0; index < file.Page_Count(); ++index) {
            progress.Step(static_cast<int>(pages.size()) + 1, total);
            pages.push_back(Read_Page(index, &file));
        }
    }
    return pages;
}

} // namespace

void Commands::Create(TCommandLine* line)
{
    line->Add_Argument(QStringLiteral("FILE"),
                       Tr("Images, PDFs and folders of them; each image and each page of a PDF "
                          "becomes a page. Accepted formats: %1.")
                           .arg(Accepted_Formats()),
                       TCommandLine::TCount::One_Or_More);
    line->Add_Output_Option(CommonOptions::Output, QStringLiteral("PROJECT"),
                            Tr("The project to write (required)."));
    line->Add_Flag(names_option, Tr("Name the pages after the files."));
    Add_Input_Options(line);
    if (!line->Parse())
        return;

    const TInputOptions options = Input_Options(*line);
    const QString output = line->Text(CommonOptions::Output);
    Files::Check_Project_Output(output, line->Is_Set(CommonOptions::Force));
    const QStringList paths = Expand_Folders(line->Arguments());
    Files::Check_Is_No_Input(output, paths);
    std::vector<TInputFile> files = Open_Inputs(paths, options);
    TDocument document;
    for (const TInputPage& page : Read_Pages(&files)) {
        const int page_id = document.Add_Page(QString(), *page.image);
        document.pages.back().name =
            line->Is_Set(names_option) ? page.name : TNamedPage::Default_Name(page_id);
    }
    Files::Save(output, document);
}

void Commands::Reindex(TCommandLine* line)
{
    line->Add_Argument(QStringLiteral("FILE"), Tr("The document."));
    line->Add_Option(first_option, QStringLiteral("N"), Tr("Value of the first label (required)."),
                     TCommandLine::TNeed::Required);
    line->Add_Option(step_option, QStringLiteral("STEP"),
                     Tr("Start each following page at the next multiple of STEP: 1, 10, 100 or "
                        "1000 (required)."),
                     TCommandLine::TNeed::Required);
    line->Add_Output_Option(CommonOptions::Output, QStringLiteral("FILE"),
                            Tr("The project to write (required)."));
    if (!line->Parse())
        return;

    const int first_value = line->Number(first_option, std::numeric_limits<int>::min(),
                                         std::numeric_limits<int>::max());
    const int method = line->Code(step_option, steps);
    const QString output = line->Text(CommonOptions::Output);
    Files::Check_Is_No_Legacy_Input(output, line->Argument());
    Files::Check_Project_Output(output, line->Is_Set(CommonOptions::Force));
    TDocument document = Files::Load(line->Argument());
    Number_Pages(document.Page_Ids(), first_value, method, &document.data);
    Files::Save(output, document);
}
