// Command that lists and copies the backups and the unsaved work that the window stored.

#include "cli/commandline.h"
#include "cli/commands.h"
#include "cli/errors.h"
#include "cli/files.h"
#include "cli/output.h"
#include "cli/terminal.h"
#include "cli/translate.h"
#include "core/safefile.h"
#include "src/safety/backup.h"
#include "src/safety/safetynet.h"

#include <QFileInfo>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include <algorithm>
#include <limits>

namespace {

const char* const copy_option = "copy";

struct TListedFile
{
    const char* kind; ///< not translated
    TKeptFile file;
};

/// Returns all copies, newest first.
std::vector<TListedFile> Listed_Files()
{
    const QString settings_folder = Files::Settings_Folder();
    const TKeptFolder recovery(TSafetyNet::Recovery_Folder(settings_folder));
    std::vector<TListedFile> files;
    const auto add = [&files](const char* kind, const std::vector<TKeptFile>& listed) {
        for (const TKeptFile& file : listed)
            files.push_back({kind, file});
    };
    add(QT_TRANSLATE_NOOP("QuilletCli", "recovery"), recovery.List());
    add(QT_TRANSLATE_NOOP("QuilletCli", "work log"), recovery.Abandoned_Logs());
    add(QT_TRANSLATE_NOOP("QuilletCli", "backup"),
        TBackup(TSafetyNet::Backup_Folder(settings_folder)).List());
    std::stable_sort(files.begin(), files.end(),
                     [](const TListedFile& first, const TListedFile& second) {
                         return first.file.time > second.file.time;
                     });
    return files;
}

void Print_List(const std::vector<TListedFile>& files)
{
    if (files.empty())
        Terminal::Print(Tr("There are no copies."));
    int number = 0;
    for (const TListedFile& listed : files) {
        const TKeptFile& file = listed.file;
        // The path comes last and is appended, not substituted: it may contain "%1" or commas.
        Terminal::Print(
            Tr("%1: %2, %3, %4 bytes, ")
                .arg(++number)
                .arg(Tr(listed.kind), file.time.toString(QStringLiteral("yyyy-MM-dd hh:mm:ss")))
                .arg(file.size) +
            (file.missing_images > 0 ? Tr("missing images: %1, ").arg(file.missing_images)
                                     : QString()) +
            (file.Is_Document_Changed() ? Tr("document changed since, ") : QString()) +
            (file.document.isEmpty() ? Tr("never saved") : file.document));
    }
}

void Print_List_As_Json(const std::vector<TListedFile>& files)
{
    QJsonArray list;
    for (const TListedFile& listed : files) {
        const TKeptFile& file = listed.file;
        list.append(QJsonObject{{QStringLiteral("number"), list.size() + 1},
                                {QStringLiteral("kind"), QLatin1String(listed.kind)},
                                {QStringLiteral("path"), file.path},
                                {QStringLiteral("time"), file.time.toString(Qt::ISODate)},
                                {QStringLiteral("bytes"), file.size},
                                {QStringLiteral("missing_images"), file.missing_images},
                                {QStringLiteral("document_changed"), file.Is_Document_Changed()},
                                {QStringLiteral("document"), file.document}});
    }
    Terminal::Print_Text(QJsonDocument(list).toJson());
}

void Copy_Kept_File(const TKeptFile& file, const QString& output)
{
    if (Files::Is_Work_Log(file.path)) {
        const QStringList report = Files::Recover_Work_Log(file.path, output);
        std::for_each(report.cbegin(), report.cend(), Terminal::Print_Report);
        return;
    }
    TSafeFile target(output, TSafeFile::TKind::Like_Target, Files::Protecting_Links(output));
    const bool is_written = target.Copy_From(file.path) && target.Commit([&](const QString& path) {
        return TSafeFile::Is_Complete(path, QFileInfo(file.path).size(), QByteArray());
    });
    if (!is_written)
        Files::Throw_Write_Error(output, target.Write_Problem());
}

} // namespace

void Commands::Kept(TCommandLine* line)
{
    line->Add_Option(copy_option, QStringLiteral("N"),
                     Tr("Copy number N of the list to the file given by --output."));
    line->Add_Option(CommonOptions::Output, QStringLiteral("FILE"), Tr("The file to write."));
    line->Add_Force_Flag();
    line->Add_Flag(CommonOptions::Json, Tr("Print the list as JSON."));
    if (!line->Parse())
        return;

    const bool is_copy = line->Is_Set(copy_option);
    if (is_copy != line->Is_Set(CommonOptions::Output))
        throw TUsageError{Tr("Options 'copy' and 'output' must be used together.")};
    line->Exclude(copy_option, CommonOptions::Json);
    const std::vector<TListedFile> files = Listed_Files();
    if (!is_copy) {
        const auto print = line->Is_Set(CommonOptions::Json) ? Print_List_As_Json : Print_List;
        print(files);
        return;
    }
    const int number = line->Number(copy_option, 1, std::numeric_limits<int>::max());
    if (static_cast<std::size_t>(number) > files.size())
        throw TJobError{QString::number(number), Tr("there is no copy with this number")};
    const TKeptFile& file = files[static_cast<std::size_t>(number) - 1].file;
    const TOutput output(*line, CommonOptions::Output, TOutput::TContent::Project);
    Files::Check_Is_No_Input(line->Text(CommonOptions::Output), {file.path});
    Copy_Kept_File(file, output.Path());
    output.Finish();
}
