// Commands that create projects from images and PDFs and renumber labels.

#include "cli/commandline.h"
#include "cli/commands.h"
#include "cli/errors.h"
#include "cli/files.h"
#include "cli/output.h"
#include "cli/terminal.h"
#include "cli/translate.h"
#include "core/safefile.h"
#include "src/model/imagefiles.h"
#include "src/model/numbering.h"
#include "src/pageinput/inputfile.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QTemporaryDir>

#include <algorithm>
#include <array>
#include <cerrno>
#include <filesystem>
#include <limits>
#include <numeric>
#include <system_error>
#include <vector>

namespace {

const char* const names_option = "names-from-files";
const char* const dpi_option = "dpi";
const char* const pdf_pages_option = "pdf-pages";
const char* const stored_option = "as-stored";
const char* const first_option = "first";
const char* const multiple_option = "over-page";

constexpr std::array<TOptionValue, 4> multiples = {{
    {"1", TNumbering::Next_1X},
    {"10", TNumbering::Next_10X},
    {"100", TNumbering::Next_100X},
    {"1000", TNumbering::Next_1000X},
}};

QString Accepted_Formats()
{
    return ImageFiles::Suffixes_And_Pdf().join(QStringLiteral(", "));
}

/// Refuses a folder with an image or PDF whose name is not valid UTF-8. QDir omits such names.
void Check_Names_In(const QString& folder)
{
    std::error_code error;
    for (const auto& entry :
         std::filesystem::directory_iterator(QFile::encodeName(folder).constData(), error)) {
        const QByteArray bytes = QByteArray::fromStdString(entry.path().filename().string());
        const QString name = QFile::decodeName(bytes);
        if (QFile::encodeName(name) != bytes && ImageFiles::Is_Image_Or_Pdf_Name(name))
            throw TJobError{QDir(folder).filePath(name), Tr("the name is not valid UTF-8")};
    }
}

/// Returns the images and PDFs of a folder in natural order: "page 2" before "page 10".
QStringList Inputs_In(const QString& folder)
{
    QStringList names;
    if (!QFileInfo(folder).isReadable())
        Files::Throw_Read_Error(folder, qt_error_string(EACCES));
    Check_Names_In(folder);
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
        if (path != Files::Standard_Stream && QFileInfo(path).isDir())
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
    line->Add_Option(pdf_pages_option, QStringLiteral("PAGES"),
                     Tr("Pages to take from each PDF, for example 1-3,7; all by default."));
    line->Add_Flag(stored_option, Tr("Do not rotate images by their EXIF orientation."));
}

TInputOptions Input_Options(const TCommandLine& line)
{
    TInputOptions options;
    if (line.Is_Set(dpi_option))
        options.resolution =
            line.Number(dpi_option, TPdfFile::Lowest_Resolution, TPdfFile::Highest_Resolution);
    if (line.Is_Set(pdf_pages_option))
        options.pdf_pages = line.Pages(pdf_pages_option);
    if (line.Is_Set(stored_option))
        options.orientation = TPageImage::TOrientation::As_Stored;
    options.needs_whole_images = true;
    return options;
}

/// An image or PDF, and its name on the command line.
struct TInput
{
    QString name;
    TInputFile file;
};

/// Copies standard input and pipes to files, since images and PDFs are read more than once.
class TCopies
{
public:
    /// The path of a copy, or the path of a file that needs none.
    QString Path_Of(const QString& path);

private:
    QTemporaryDir d_folder{Files::Temporary_Template()};
    int d_count = 0;
};

QString TCopies::Path_Of(const QString& path)
{
    const QFileInfo file(path);
    if (path != Files::Standard_Stream && (!file.exists() || file.isFile()))
        return path;
    // The copy has the name of the pipe, which may become the name of a page.
    const QString folder = d_folder.filePath(QString::number(++d_count));
    QString copy = QDir(folder).filePath(Files::Base_Name(path));
    QDir().mkpath(folder);
    QString problem;
    if (!TSafeFile::Replace(copy, Files::Read(path), 0, &problem))
        Files::Throw_Write_Error(copy, problem);
    return copy;
}

/// Counts the pages of all files.
std::vector<TInput> Open_Inputs(const QStringList& paths, const TInputOptions& options,
                                TCopies* copies)
{
    std::vector<TInput> inputs;
    inputs.reserve(static_cast<std::size_t>(paths.size()));
    for (const QString& path : paths) {
        Files::Check_Input(path);
        inputs.push_back({path, TInputFile(copies->Path_Of(path), options)});
        const QString fault = inputs.back().file.Open();
        if (!fault.isEmpty())
            throw TJobError{path, fault};
    }
    return inputs;
}

/// Reads a page.
TInputPage Read_Page(int index, TInput* input)
{
    TInputPage page = input->file.Read(index);
    if (!page.image)
        throw TJobError{input->name, page.message};
    if (!page.message.isEmpty())
        Terminal::Print_Warning(input->name, page.message);
    return page;
}

/// Reads all pages of all files.
std::vector<TInputPage> Read_Pages(std::vector<TInput>* inputs)
{
    const int total =
        std::accumulate(inputs->cbegin(), inputs->cend(), 0, [](int count, const TInput& input) {
            return count + input.file.Page_Count();
        });
    TTerminalProgress progress(Tr("Reading page %1 of %2"));
    std::vector<TInputPage> pages;
    for (TInput& input : *inputs) {
        Terminal::Print_Detail(input.name, Tr("pages: %1").arg(input.file.Page_Count()));
        for (int index = 0; index < input.file.Page_Count(); ++index) {
            progress.Begin_Part(static_cast<int>(pages.size()) + 1, total);
            pages.push_back(Read_Page(index, &input));
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
    const TOutput output(*line, CommonOptions::Output, TOutput::TContent::Project);
    const QStringList paths = Expand_Folders(line->Arguments());
    Files::Check_Is_No_Input(line->Text(CommonOptions::Output), paths);
    TCopies copies;
    std::vector<TInput> inputs = Open_Inputs(paths, options, &copies);
    TDocument document;
    for (const TInputPage& page : Read_Pages(&inputs)) {
        const int page_id = document.Add_Page(QString(), *page.image);
        document.pages.back().name =
            line->Is_Set(names_option) ? page.name : TNamedPage::Default_Name(page_id);
    }
    Files::Save(output.Path(), document);
    output.Finish();
}

void Commands::Reindex(TCommandLine* line)
{
    line->Add_Argument(QStringLiteral("FILE"), Tr("The document."));
    line->Add_Option(first_option, QStringLiteral("N"), Tr("Value of the first label (required)."),
                     TCommandLine::TNeed::Required);
    line->Add_Option(multiple_option, QStringLiteral("N"),
                     Tr("Start each following page at the next multiple of N: 1, 10, 100 or "
                        "1000 (required)."),
                     TCommandLine::TNeed::Required);
    line->Add_Output_Option(CommonOptions::Output, QStringLiteral("FILE"),
                            Tr("The project to write (required)."));
    if (!line->Parse())
        return;

    const int first_value = line->Number(first_option, std::numeric_limits<int>::min(),
                                         std::numeric_limits<int>::max());
    const int method = line->Code(multiple_option, multiples);
    Files::Check_Is_No_Legacy_Input(line->Text(CommonOptions::Output), line->Argument());
    const TOutput output(*line, CommonOptions::Output, TOutput::TContent::Project);
    TDocument document = Files::Load(line->Argument());
    if (!Can_Number_Pages(document.Page_Ids(), first_value, method, document.data))
        throw TJobError{
            line->Argument(),
            Tr("the numbers would become larger than %1").arg(std::numeric_limits<int>::max())};
    Number_Pages(document.Page_Ids(), first_value, method, &document.data);
    Files::Save(output.Path(), document);
    output.Finish();
}
