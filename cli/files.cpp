#include "cli/files.h"

#include "cli/errors.h"
#include "cli/terminal.h"
#include "cli/translate.h"
#include "core/safefile.h"
#include "core/samefile.h"
#include "core/xmlfile.h"
#include "src/format/legacyfile.h"
#include "src/format/projectfile.h"
#include "src/safety/logconversion.h"
#include "src/safety/logreader.h"
#include "src/safety/safetynet.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

#include <algorithm>

namespace {

TDocument Load_Project(const QString& path)
{
    const TProjectSurvey survey = ProjectSurvey::Survey(Files::Read(path));
    if (!survey.defects.empty())
        throw TJobError{path, Files::Describe(survey.defects.front())};
    return TDocument(survey);
}

[[noreturn]] void Throw_Exists(const QString& path)
{
    throw TJobError{path, Tr("already exists; use --force to overwrite it")};
}

/// Whether a path is an input, or the image that belongs to a legacy input.
bool Is_Input(const QString& path, const QString& input)
{
    return Is_Same_File(path, input) ||
           (LegacyFile::Is_Legacy(input) &&
            Is_Same_File(path, LegacyFile::Image_Path(LegacyFile::Base_Name(input))));
}

} // namespace

QByteArray Files::Read(const QString& path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        throw TJobError{path, file.errorString()};
    if (file.size() > ProjectLayout::Largest_File)
        throw TJobError{path, Tr("is larger than 2 GiB")};
    QByteArray content = file.readAll();
    // Opening a folder succeeds, reading it fails.
    if (file.error() != QFileDevice::NoError)
        throw TJobError{path, file.errorString()};
    return content;
}

TProjectSurvey Files::Survey(const QString& path)
{
    TTerminalProgress progress(Tr("Checking page %1 of %2"));
    return ProjectSurvey::Survey(Read(path), ProjectSurvey::TImages::Decode, progress.Steps());
}

TDocument Files::Load(const QString& path)
{
    if (!LegacyFile::Is_Legacy(path))
        return Load_Project(path);
    try {
        return TDocument(LegacyFile::Read(path));
    } catch (const TXmlFileException& exception) {
        throw TJobError{path, exception.Placed_Message()};
    }
}

TDocument Files::Load_Pages(const QString& path)
{
    TDocument document = Load(path);
    if (document.pages.empty())
        throw TJobError{path, Tr("has no pages")};
    return document;
}

void Files::Check_Folder(const QString& path)
{
    if (!QFileInfo(path).isDir())
        throw TJobError{path, Tr("is not a folder")};
}

void Files::Check_Output(const QString& path, bool force)
{
    const QFileInfo file(path);
    const QFileInfo folder(file.path());
    // Not even one that appears later.
    if (!force)
        TSafeFile::Keep_Existing_Files();
    if (path.isEmpty() || file.isDir())
        throw TJobError{path, Tr("is not a valid file name")};
    if (file.exists() && !file.isFile())
        throw TJobError{path, Tr("is not a regular file")};
    if (file.exists() && !force)
        Throw_Exists(path);
    if (!folder.isDir())
        throw TJobError{path, Tr("the folder does not exist")};
    // The file is replaced by a new one, so its folder has to be writable, too.
    if (!folder.isWritable() || (file.exists() && !file.isWritable()))
        throw TJobError{path, Tr("is write-protected")};
}

void Files::Check_Project_Output(const QString& path, bool force)
{
    if (LegacyFile::Has_Suffix(path))
        throw TJobError{path, Tr("has the suffix of a file of an earlier generation; projects "
                                 "usually end in .quillet")};
    Check_Output(path, force);
}

void Files::Check_Is_No_Input(const QString& output, const QStringList& inputs)
{
    if (std::any_of(inputs.cbegin(), inputs.cend(),
                    [&output](const QString& input) { return Is_Input(output, input); }))
        throw TJobError{output, Tr("is an input and cannot be overwritten")};
}

void Files::Check_Is_No_Legacy_Input(const QString& output, const QString& input)
{
    if (LegacyFile::Is_Legacy(input))
        Check_Is_No_Input(output, {input});
}

QString Files::Settings_Folder()
{
    return QDir::home().filePath(QStringLiteral(".quillet"));
}

int Files::Protecting_Links(const QString& path)
{
    return TSafetyNet::Links_To(path, Settings_Folder());
}

void Files::Write(const QString& path, const QByteArray& content)
{
    if (!TSafeFile::Replace(path, content, Protecting_Links(path)))
        Throw_Write_Error(path);
}

void Files::Save(const QString& path, const TDocument& document)
{
    TTerminalProgress progress(Tr("Saving page %1 of %2"));
    TProjectWriter project;
    const QString fault = ProjectFile::Write(document.appearance, document.pages, document.data,
                                             progress.Steps(), &project);
    if (!fault.isEmpty())
        throw TJobError{path, fault};
    if (project.Size() > ProjectLayout::Largest_File)
        throw TJobError{path, Tr("would be larger than 2 GiB")};
    TSafeFile target(path, TSafeFile::TKind::Like_Target, Protecting_Links(path));
    if (!target.Is_Beside() || !ProjectFile::Commit(project, &target))
        Throw_Write_Error(path);
}

bool Files::Is_Work_Log(const QString& path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) &&
           file.peek(TDatabase::Signature().size()) == TDatabase::Signature();
}

QStringList Files::Recover_Work_Log(const QString& path, const QString& output)
{
    Check_Is_No_Input(output, {path});
    TLogReader log;
    switch (log.Open(path, TSafetyNet::Backup_Folder(Settings_Folder()))) {
    case TLogReader::TContent::Work:
        break;
    case TLogReader::TContent::Nothing:
        throw TJobError{path, Tr("contains no document")};
    case TLogReader::TContent::Unreadable:
        throw TJobError{path, log.Problem()};
    }
    TTerminalProgress progress(Tr("Recovering page %1 of %2"));
    TSafeFile target(output, TSafeFile::TKind::Like_Target, Protecting_Links(output));
    const LogConversion::TResult result =
        LogConversion::Write(&log, LogConversion::TDamage::Accept, &target, progress.Steps());
    if (!result.is_written)
        Throw_Write_Error(output);
    QStringList messages;
    if (!log.Is_Whole() || log.Has_Ignored_Changes())
        messages += Tr("%1: damaged, a part is not readable").arg(path);
    // The path is substituted last: it may contain "%1".
    messages += Tr("%3: pages: %1, missing images: %2")
                    .arg(log.Pages().size())
                    .arg(result.missing_images)
                    .arg(output);
    return messages;
}

QString Files::Describe(const TProjectDefect& defect)
{
    return Tr("byte %1: %2").arg(defect.offset).arg(defect.what);
}

void Files::Throw_Write_Error(const QString& path)
{
    // Without --force, the file did not exist when the command began.
    if (TSafeFile::Is_Keeping_Existing_Files() && QFileInfo::exists(path))
        Throw_Exists(path);
    throw TJobError{path, Tr("cannot be written")};
}
