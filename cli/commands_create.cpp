// Projects made from page images, and projects numbered anew.

#include "cli/commandline.h"
#include "cli/commands.h"
#include "cli/errors.h"
#include "cli/files.h"
#include "cli/terminal.h"
#include "cli/words.h"
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

constexpr std::array<TOptionText, 4> steps = {{
    {"1", TNumbering::Next_1X},
    {"10", TNumbering::Next_10X},
    {"100", TNumbering::Next_100X},
    {"1000", TNumbering::Next_1000X},
}};

/// The images of a folder, in the order in which people count: page 2 before page 10.
QStringList Images_In(const QString& folder)
{
    QStringList names;
    if (!QFileInfo(folder).isReadable())
        throw TJobError{folder, Translated("cannot be read")};
    // Links that lead nowhere are taken for images: better an error than a page less.
    const auto is_image = [&folder](const QString& name) {
        const QFileInfo file(QDir(folder).filePath(name));
        return ImageFiles::Is_Image_Name(name) && (file.isFile() || !file.exists());
    };
    const QStringList entries = QDir(folder).entryList(QDir::Files | QDir::System, QDir::Name);
    std::copy_if(entries.cbegin(), entries.cend(), std::back_inserter(names), is_image);
    if (names.isEmpty())
        throw TJobError{folder, Translated("holds no images")};
    // A locale of its own: in the C locale numbers do not count, and the order of pages should not
    // depend on who runs this.
    QCollator collator{QLocale(QLocale::English)};
    collator.setNumericMode(true);
    std::stable_sort(names.begin(), names.end(), collator);
    QStringList paths;
    for (const QString& name : std::as_const(names))
        paths += QDir(folder).filePath(name);
    return paths;
}

/// Images as they were given, with folders replaced by what is in them.
QStringList Images_Of(const QStringList& arguments)
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
        throw TJobError{path, Translated("cannot be read as an image")};
    QFile file(path);
    file.open(QIODevice::ReadOnly);
    throw TJobError{path, file.errorString()};
}

} // namespace

void Commands::Create(TCommandLine* line)
{
    line->Take_Arguments(QStringLiteral("IMAGE"),
                         Translated("Images, a page each, and folders of images."),
                         TCommandLine::TCount::One_Or_More);
    line->Take_Output(Options::Output, QStringLiteral("FILE"),
                      Translated("The project to make (required)."));
    line->Take_Flag(names_option, Translated("Name the pages after the files."));
    if (!line->Parse())
        return;

    const QString output = line->Text(Options::Output);
    Files::Check_Output(output, line->Is_Set(Options::Force));
    const QStringList paths = Images_Of(line->Arguments());
    Files::Check_Is_Other(output, paths);
    TDocument document;
    {
        TTerminalProgress progress(Translated("Reading image %1 of %2"));
        int number = 0;
        for (const QString& path : paths) {
            progress.Step(++number, paths.size());
            const TPageImage image = Read_Image(path);
            const int page_id = document.Add_Page(QString(), image);
            document.pages.back().name = line->Is_Set(names_option)
                                             ? QFileInfo(path).completeBaseName()
                                             : WholeDocument::Page_Name(page_id);
        }
    }
    Files::Save(output, &document);
}

void Commands::Reindex(TCommandLine* line)
{
    line->Take_Arguments(QStringLiteral("FILE"), Translated("The document."));
    line->Take_Option(first_option, QStringLiteral("N"), Translated("The first value (required)."),
                      TCommandLine::TNeed::Required);
    line->Take_Option(step_option, QStringLiteral("STEP"),
                      Translated("Each page begins with a multiple of STEP: 1 (counts on), 10, 100 "
                                 "or 1000 (required)."),
                      TCommandLine::TNeed::Required);
    line->Take_Output(Options::Output, QStringLiteral("FILE"),
                      Translated("The project to write (required)."));
    if (!line->Parse())
        return;

    const int first_value = line->Number(first_option, std::numeric_limits<int>::min(),
                                         std::numeric_limits<int>::max());
    const int method = line->Code(step_option, steps);
    const QString output = line->Text(Options::Output);
    Files::Check_Output(output, line->Is_Set(Options::Force));
    TDocument document = Files::Load(line->Argument());
    WholeDocument::Number_Pages(document.Page_Ids(), first_value, method, &document.data);
    Files::Save(output, &document);
}
