#include "cli/files.h"

#include "cli/errors.h"
#include "cli/terminal.h"
#include "cli/translate.h"
#include "core/openfile.h"
#include "core/safefile.h"
#include "core/samefile.h"
#include "core/xmlfile.h"
#include "src/format/legacyfile.h"
#include "src/format/pagetexts.h"
#include "src/format/projectfile.h"
#include "src/model/imagecheck.h"
#include "src/safety/logconversion.h"
#include "src/safety/logreader.h"
#include "src/safety/safetynet.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

#include <algorithm>
#include <cerrno>
#include <unistd.h>

namespace {

[[noreturn]] void Throw_Too_Large(const QString& path)
{
    Files::Throw_Read_Error(path, Tr("it is larger than 2 GiB"));
}

/// A defect with the command that helps.
QString With_Advice(const QString& defect)
{
    return defect + Tr("; 'quillet-cli recover' saves what can be read");
}

TDocument Load_Project(const QString& path)
{
    const TProjectSurvey survey = ProjectSurvey::Survey(Files::Read_Project(path));
    for (const TProjectDefect& defect : survey.defects) {
        const QString description = Files::Describe(defect);
        if (defect.is_harmless)
            Terminal::Print_Warning(path, description);
        else
            throw TJobError{path, survey.pages.empty() ? description : With_Advice(description)};
    }
    return TDocument(survey);
}

/// Ends the command if it has read standard input before: there is nothing left to read.
void Use_Standard_Input()
{
    static bool is_used = false;
    if (is_used)
        throw TUsageError{Tr("Standard input can be used only once.")};
    is_used = true;
}

/// Reads a pipe up to the largest size of a file.
QByteArray Read_Pipe(const QString& path, QFile* pipe)
{
    constexpr qint64 block_size = 1024 * 1024;
    QByteArray content;
    for (QByteArray block = pipe->read(block_size); !block.isEmpty();
         block = pipe->read(block_size)) {
        const qint64 size = qint64{content.size()} + block.size();
        if (size > TOpenFile::Largest_Read)
            Throw_Too_Large(path);
        // An array that grows by itself may become larger than the limit, which fails.
        if (size > content.capacity())
            content.reserve(static_cast<int>(qMin(TOpenFile::Largest_Read, 2 * size)));
        content += block;
    }
    return content;
}

[[noreturn]] void Throw_Exists(const QString& path)
{
    throw TJobError{path, Tr("already exists; use --force to overwrite it")};
}

/// The path of the file to which a standard stream is redirected; empty for a pipe or a device.
QString Redirected(const QString& stream)
{
    return QFileInfo(stream).isFile() ? stream : QString();
}

/// Whether a path is an input, or the image that belongs to a legacy input.
bool Is_Input(const QString& output, const QString& input)
{
    const QString path =
        output == Files::Standard_Stream ? Redirected(QStringLiteral("/dev/stdout")) : output;
    if (input == Files::Standard_Stream)
        return Is_Same_File(path, Redirected(QStringLiteral("/dev/stdin")));
    return Is_Same_File(path, input) ||
           (LegacyFile::Is_Legacy(input) &&
            Is_Same_File(path, LegacyFile::Image_Path(LegacyFile::Base_Name(input))));
}

/// Prints a warning for each text whose characters a project cannot store.
void Warn_Of_Lost_Characters(const QString& path, const TDocument& document)
{
    const auto warn = [&path](const QString& where) {
        Terminal::Print_Warning(path,
                                where + Tr("characters that a project cannot store are lost"));
    };
    int number = 0;
    for (const TNamedPage& page : document.pages) {
        ++number;
        if (!PageTexts::Is_Storable(page.name))
            warn(Tr("name of page %1: ").arg(number));
    }
    const bool has_pages = !document.pages.empty();
    for (const QString& header : {document.appearance.header_1, document.appearance.header_2}) {
        if (!(has_pages ? PageTexts::Is_Storable(header) : PageTexts::Is_Latin1(header)))
            warn(Tr("header lines: "));
    }
}

} // namespace

QString Files::Temporary_Template()
{
    return QDir::temp().filePath(QStringLiteral("quillet-XXXXXX"));
}

void Files::Check_Input(const QString& path)
{
    if (path == Standard_Stream)
        return;
    const QByteArray system_path = QFile::encodeName(path);
    if (access(system_path.constData(), R_OK) != 0)
        Throw_Read_Error(path, qt_error_string(errno));
}

QByteArray Files::Read(const QString& path)
{
    QFile file(path);
    const bool is_stream = path == Standard_Stream;
    if (is_stream)
        Use_Standard_Input();
    if (!(is_stream ? file.open(STDIN_FILENO, QIODevice::ReadOnly)
                    : file.open(QIODevice::ReadOnly)))
        Throw_Read_Error(path,
                         QFileInfo(path).isDir() ? qt_error_string(EISDIR) : file.errorString());
    if (file.size() > TOpenFile::Largest_Read)
        Throw_Too_Large(path);
    // Devices have no size, even if they are endless.
    const bool is_pipe = file.isSequential() || file.size() == 0;
    QByteArray content = is_pipe ? Read_Pipe(path, &file) : file.readAll();
    if (file.error() != QFileDevice::NoError)
        Throw_Read_Error(path, file.errorString());
    Terminal::Print_Detail(path, Tr("read, %1 bytes").arg(content.size()));
    return content;
}

TByteSource Files::Read_Project(const QString& path)
{
    TByteSource content = path == Standard_Stream ? TByteSource() : TByteSource::Of_File(path);
    // A pipe, an empty file or one that cannot be read.
    if (content.Is_Empty())
        return Read(path);
    Terminal::Print_Detail(path, Tr("read, %1 bytes").arg(content.Size()));
    return content;
}

QString Files::Base_Name(const QString& path)
{
    return path == Standard_Stream ? QStringLiteral("stdin") : QFileInfo(path).completeBaseName();
}

TProjectSurvey Files::Survey(const QString& path)
{
    TTerminalProgress progress(Tr("Checking page %1 of %2"));
    return ProjectSurvey::Survey(Read_Project(path), ProjectSurvey::TImages::Check,
                                 progress.Report());
}

TDocument Files::Load(const QString& path)
{
    if (!LegacyFile::Is_Legacy(path))
        return Load_Project(path);
    QString loss;
    TDocument document = Load_Legacy(path, &loss);
    if (!loss.isEmpty())
        Terminal::Print_Warning(path, loss);
    return document;
}

TDocument Files::Load_Legacy(const QString& path, QString* loss)
{
    const QString image = LegacyFile::Image_Path(LegacyFile::Base_Name(path));
    if (QFileInfo::exists(image)) {
        const QString fault = ImageCheck::Fault(Read(image));
        if (!fault.isEmpty())
            throw TJobError{image, fault};
    }
    try {
        int invalid = 0;
        const TFileContent content = LegacyFile::Read(path, &invalid);
        TDocument document(content);
        const std::size_t repeated = content.pages->front().items.size() -
                                     document.Content(document.pages.front()).data_items.size();
        if (invalid > 0 || repeated > 0)
            *loss = Tr("labels without a valid position: %1, with the id of an earlier one: %2")
                        .arg(invalid)
                        .arg(repeated);
        return document;
    } catch (const TXmlFileException& exception) {
        throw TJobError{path, exception.Placed_Message()};
    }
}

void Files::Check_Images(const QString& path, const TDocument& document,
                         const std::vector<int>& numbers)
{
    TTerminalProgress progress(Tr("Checking page %1 of %2"));
    int step = 0;
    for (const int number : numbers) {
        progress.Begin_Part(++step, static_cast<int>(numbers.size()));
        const TNamedPage& page = document.pages[static_cast<std::size_t>(number) - 1];
        const QByteArray image = document.Content(page).image.Source_Bytes();
        const QString fault = image.isEmpty() ? QString() : ImageCheck::Fault(image);
        if (!fault.isEmpty())
            throw TJobError{path, With_Advice(Tr("page %1: ").arg(number) + fault)};
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
    const QFileInfo folder(path);
    if (!folder.isDir())
        Throw_Write_Error(path, qt_error_string(folder.exists() ? ENOTDIR : ENOENT));
}

void Files::Check_Output(const QString& path, bool force)
{
    const QFileInfo file(path);
    const QFileInfo folder(file.path());
    // A file that appears later must not be replaced either.
    if (!force)
        TSafeFile::Keep_Existing_Files();
    if (file.isDir())
        Throw_Write_Error(path, qt_error_string(EISDIR));
    if (file.exists() && !file.isFile())
        throw TJobError{path, Tr("is not a regular file; \"-\" stands for standard output")};
    if (file.exists() && !force)
        Throw_Exists(path);
    if (!folder.isDir())
        Throw_Write_Error(path, qt_error_string(folder.exists() ? ENOTDIR : ENOENT));
    // The file is replaced by a new one, so its folder has to be writable, too.
    if (!folder.isWritable() || (file.exists() && !file.isWritable()))
        Throw_Write_Error(path, qt_error_string(EACCES));
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
        throw TJobError{output == Standard_Stream ? Tr("standard output") : output,
                        Tr("is an input and cannot be overwritten")};
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
    QString problem;
    if (!TSafeFile::Replace(path, content, Protecting_Links(path), &problem))
        Throw_Write_Error(path, problem);
}

void Files::Save(const QString& path, const TDocument& document)
{
    Warn_Of_Lost_Characters(path, document);
    TTerminalProgress progress(Tr("Saving page %1 of %2"));
    TProjectWriter project;
    const QString fault = ProjectFile::Write(document.appearance, document.pages, document.data,
                                             progress.Report(), &project);
    if (!fault.isEmpty())
        throw TJobError{path, fault};
    TSafeFile target(path, TSafeFile::TKind::Like_Target, Protecting_Links(path));
    if (!target.Is_Beside() || !ProjectFile::Commit(project, &target))
        Throw_Write_Error(path, target.Write_Problem());
}

bool Files::Is_Work_Log(const QString& path)
{
    QFile file(path);
    // What is read from a pipe is lost.
    return QFileInfo(path).isFile() && file.open(QIODevice::ReadOnly) &&
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
        LogConversion::Write(&log, LogConversion::TDamage::Accept, &target, progress.Report());
    if (!result.is_written)
        Throw_Write_Error(output, target.Write_Problem());
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

void Files::Throw_Read_Error(const QString& path, const QString& problem)
{
    throw TJobError{path, Tr("cannot be read: %1").arg(problem)};
}

void Files::Throw_Write_Error(const QString& path, const QString& problem)
{
    // Without --force, the file did not exist when the command began.
    if (TSafeFile::Is_Keeping_Existing_Files() && QFileInfo(path).isFile())
        Throw_Exists(path);
    throw TJobError{path, problem.isEmpty() ? Tr("cannot be written")
                                            : Tr("cannot be written: %1").arg(problem)};
}
