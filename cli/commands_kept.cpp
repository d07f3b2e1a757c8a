// The safety copies that the window keeps.

#include "cli/commandline.h"
#include "cli/commands.h"
#include "cli/errors.h"
#include "cli/files.h"
#include "cli/terminal.h"
#include "cli/words.h"
#include "core/safefile.h"
#include "src/safety/keptfiles.h"
#include "src/safety/safetynet.h"

#include <QDir>

#include <algorithm>
#include <limits>

namespace {

const char* const copy_option = "copy";

struct TListedFile
{
    QString kind;
    TKeptFile file;
};

/// All copies, newest first.
std::vector<TListedFile> Listed_Files()
{
    const QString settings_folder = QDir::home().filePath(QStringLiteral(".quillet"));
    std::vector<TListedFile> files;
    const auto add = [&files](const QString& kind, const QString& folder) {
        for (const TKeptFile& file : TKeptFolder(folder).List())
            files.push_back({kind, file});
    };
    add(Translated("recovery"), TSafetyNet::Recovery_Folder(settings_folder));
    add(Translated("backup"), TSafetyNet::Backup_Folder(settings_folder));
    std::stable_sort(files.begin(), files.end(),
                     [](const TListedFile& first, const TListedFile& second) {
                         return first.file.time > second.file.time;
                     });
    return files;
}

void Print_List(const std::vector<TListedFile>& files)
{
    if (files.empty())
        Terminal::Print(Translated("No copies are kept."));
    int number = 0;
    for (const TListedFile& listed : files) {
        const TKeptFile& file = listed.file;
        // The document last, as its path may be anything.
        Terminal::Print(
            Translated("%1: %2, %3, %4 bytes, ")
                .arg(++number)
                .arg(listed.kind, file.time.toString(QStringLiteral("yyyy-MM-dd hh:mm:ss")))
                .arg(file.size) +
            (file.document.isEmpty() ? Translated("never saved") : file.document));
    }
}

void Copy_Out(const TKeptFile& file, const QString& output)
{
    TSafeFile target(output);
    const bool is_written = target.Copy_From(file.path) && target.Commit([&](const QString& path) {
        return TSafeFile::Is_Complete(path, QFileInfo(file.path).size(), QByteArray());
    });
    if (!is_written)
        Files::Fail_To_Write(output);
}

} // namespace

void Commands::Kept(TCommandLine* line)
{
    line->Take_Option(copy_option, QStringLiteral("N"),
                      Translated("Copy number N of the list to the file named by --output."));
    line->Take_Option(Options::Output, QStringLiteral("FILE"), Translated("The file to write."));
    line->Take_Force();
    if (!line->Parse())
        return;

    const bool is_copy = line->Is_Set(copy_option);
    if (is_copy != line->Is_Set(Options::Output))
        throw TUsageError{Translated("Options 'copy' and 'output' belong together.")};
    const std::vector<TListedFile> files = Listed_Files();
    if (!is_copy) {
        Print_List(files);
        return;
    }
    const int number = line->Number(copy_option, 1, std::numeric_limits<int>::max());
    const QString output = line->Text(Options::Output);
    if (static_cast<std::size_t>(number) > files.size())
        throw TJobError{QString::number(number), Translated("no kept copy has this number")};
    Files::Check_Output(output, line->Is_Set(Options::Force));
    Copy_Out(files[static_cast<std::size_t>(number) - 1].file, output);
}
