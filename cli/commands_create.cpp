// Commands that create projects from images and renumber labels.

#include "cli/commandline.h"
#include "cli/commands.h"
#include "cli/errors.h"
#include "cli/files.h"
#include "cli/terminal.h"
#include "cli/translate.h"
#include "src/model/imagefiles.h"
#include "src/model/numbering.h"

#include <QCollator>
#include <QDir>
#include <QFile>
#include <QFileInfo>

#include <algorithm>
#include <array>
#include <limits>

namespace {

const char* const names_option = "names-from-files";
const char* const first_option = "first";
const char* const step_option = "over-page";

constexpr std::array<TOptionValue, 4> steps = {{
    {"1", TNumbering::Next_1X},
    {"10", TNumbering::Next_10X},
    {"100", TNumbering::Next_100X},
    {"1000", TNumbering::Next_1000X},
}};

/// Returns the images of a folder in natural order: "page 2" before "page 10".
QStringList Images_In(const QString& folder)
{
    QStringList names;
    if (!QFileInfo(folder).isReadable())
        throw TJobError{folder, Tr("cannot be read")};
    // A dangling link counts as an image: an error is better than a missing page.
    const auto is_image = [&folder](const QString& name) {
        const QFileInfo file(QDir(folder).filePath(name));
        return ImageFiles::Is_Image_Name(name) && (file.isFile() || !file.exists());
    };
    const QStringList entries = QDir(folder).entryList(QDir::Files | QDir::System, QDir::Name);
    std::copy_if(entries.cbegin(), entries.cend(), std::back_inserter(names), is_image);
    if (names.isEmpty())
        throw TJobError{folder, Tr("contains no images")};
    // A fixed locale: the C locale has no natural order, and the order of the pages must not depend
    // on the user's locale.
    QCollator collator{QLocale(QLocale::English)};
    collator.setNumericMode(true);
    std::stable_sort(names.begin(), names.end(), collator);
    QStringList paths;
    for (const QString& name : std::as_const(names))
        paths += QDir(folder).filePath(name);
    return paths;
}

/// Replaces each folder by the images in it.
QStringList Expand_Folders(const QStringList& arguments)
{
    QStringList paths;
    for (const QString& path : arguments) {
        if (QFileInfo(path).isDir())
            paths += Images_In(path);
        else
            paths += path;
    }
    return paths;
}

TPageImage Read_Image(const QString& path)
{
    TPageImage image = TPageImage::From_File(path);
    if (!image.isNull())
        return image;
    if (QFileInfo(path).isReadable())
        throw TJobError{path, Tr("is not a readable image")};
    QFile file(path);
    file.open(QIODevice::ReadOnly);
    throw TJobError{path, file.errorString()};
}

} // namespace

void Commands::Create(TCommandLine* line)
{
    line->Add_Argument(QStringLiteral("IMAGE"),
                       Tr("Images and folders of images; each image becomes a page."),
                       TCommandLine::TCount::One_Or_More);
    line->Add_Output_Option(CommonOptions::Output, QStringLiteral("FILE"),
                            Tr("The project to write (required)."));
    line->Add_Flag(names_option, Tr("Name the pages after the images."));
    if (!line->Parse())
        return;

    const QString output = line->Text(CommonOptions::Output);
    Files::Check_Output(output, line->Is_Set(CommonOptions::Force));
    const QStringList paths = Expand_Folders(line->Arguments());
    Files::Check_Is_No_Input(output, paths);
    TDocument document;
    {
        TTerminalProgress progress(Tr("Reading image %1 of %2"));
        int number = 0;
        for (const QString& path : paths) {
            progress.Step(++number, paths.size());
            const TPageImage image = Read_Image(path);
            const int page_id = document.Add_Page(QString(), image);
            document.pages.back().name = line->Is_Set(names_option)
                                             ? QFileInfo(path).completeBaseName()
                                             : TNamedPage::Default_Name(page_id);
        }
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
    Files::Check_Output(output, line->Is_Set(CommonOptions::Force));
    TDocument document = Files::Load(line->Argument());
    Number_Pages(document.Page_Ids(), first_value, method, &document.data);
    Files::Save(output, document);
}
