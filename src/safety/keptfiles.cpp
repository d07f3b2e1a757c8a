#include "src/safety/keptfiles.h"

#include "core/safefile.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QRandomGenerator>

#include <algorithm>
#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

const char* const copy_suffix = ".quillet";
const char* const note_suffix = ".note";
const char* const log_suffix = ".log";
const char* const log_tail_suffix = ".log-wal"; // the name that SQLite gives it
const char* const base_suffix = ".base";

const char* const reported = "reported"; ///< in a note

constexpr mode_t folder_mode = S_IRWXU;
constexpr mode_t file_mode = S_IRUSR | S_IWUSR;

/// In seconds. Files are created first and locked after that, so a recent file without a lock may
/// still be in use.
constexpr qint64 recent_age = 60;

bool Is_Recent(const QFileInfo& file)
{
    return file.lastModified().secsTo(QDateTime::currentDateTime()) <= recent_age;
}

QByteArray Stamp_Text(const TFileStamp& stamp)
{
    return QByteArray::number(stamp.size) + ' ' + QByteArray::number(stamp.seconds) + ' ' +
           QByteArray::number(stamp.nanoseconds);
}

/// The stamp of no file if the text is none.
TFileStamp Read_Stamp(const QByteArray& text)
{
    const QList<QByteArray> numbers = text.split(' ');
    if (numbers.size() != 3)
        return {};
    return {numbers.at(0).toLongLong(), numbers.at(1).toLongLong(), numbers.at(2).toLongLong()};
}

} // namespace

bool TKeptFile::Is_Document_Changed() const
{
    const TFileStamp present = TFileStamp::Of(document);
    return document_stamp.Exists() && present.Exists() && present != document_stamp;
}

bool TKeptNote::Open(const QString& path, TExisting existing)
{
    Close();
    const int exclusive = existing == TExisting::Refuse ? O_EXCL : 0;
    d_descriptor = open(QFile::encodeName(path).constData(),
                        O_RDWR | O_CREAT | O_CLOEXEC | O_NOFOLLOW | exclusive, file_mode);
    // The umask or an older note may have other permissions.
    if (d_descriptor >= 0 && fchmod(d_descriptor, file_mode) == 0 &&
        flock(d_descriptor, LOCK_EX | LOCK_NB) == 0)
        return true;
    Close();
    return false;
}

bool TKeptNote::Write(const TWorkDocument& document, std::optional<int> missing_images,
                      bool is_reported) const
{
    QByteArray text = document.path.toUtf8() + '\0';
    if (missing_images)
        text += QByteArray::number(*missing_images);
    text += '\0' + (document.stamp.Exists() ? Stamp_Text(document.stamp) : QByteArray()) + '\0';
    if (is_reported)
        text += reported;
    while (text.endsWith('\0'))
        text.chop(1);
    return pwrite(d_descriptor, text.constData(), static_cast<size_t>(text.size()), 0) ==
               text.size() &&
           ftruncate(d_descriptor, text.size()) == 0;
}

void TKeptNote::Close()
{
    if (d_descriptor >= 0)
        close(d_descriptor);
    d_descriptor = -1;
}

TKeptFolder::TKeptFolder(const QString& path)
    : d_path(path)
{
}

bool TKeptFolder::Prepare() const
{
    const QFileInfo folder(d_path);
    if (folder.isSymLink() || QFileInfo(folder.path()).isSymLink())
        return false;
    const QByteArray path = QFile::encodeName(d_path);
    if (!folder.isDir()) {
        if (mkdir(path.constData(), folder_mode) != 0)
            return false;
        // Otherwise a power cut could remove the folder with all copies. The settings folder that
        // contains it may be new as well.
        TSafeFile::Sync(folder.path());
        TSafeFile::Sync(QFileInfo(folder.path()).path());
    }
    struct stat state = {};
    if (stat(path.constData(), &state) != 0)
        return false;
    // Neither the umask nor the mode of an existing folder may widen or narrow the access.
    if ((state.st_mode & 07777) != folder_mode && chmod(path.constData(), folder_mode) != 0)
        return false;
    return QFileInfo(d_path).isWritable();
}

QString TKeptFolder::Path(const QString& name, const char* suffix) const
{
    return d_path + QLatin1Char('/') + name + QLatin1String(suffix);
}

QString TKeptFolder::Copy_Path(const QString& name) const
{
    return Path(name, copy_suffix);
}

QString TKeptFolder::Note_Path(const QString& name) const
{
    return Path(name, note_suffix);
}

QString TKeptFolder::Log_Path(const QString& name) const
{
    return Path(name, log_suffix);
}

QString TKeptFolder::Base_Path(const QString& name) const
{
    return Path(name, base_suffix);
}

QString TKeptFolder::Claim_Name(const QString& prefix, TKeptNote* note) const
{
    const QString base =
        prefix + QDateTime::currentDateTime().toString(QStringLiteral("yyyyMMdd-hhmmss"));
    // Several processes may start within a second, and clocks are set back.
    constexpr int attempts = 100;
    for (int attempt = 1; attempt <= attempts; ++attempt) {
        QString name = attempt == 1 ? base : base + QLatin1Char('-') + QString::number(attempt);
        if (!QFile::exists(Copy_Path(name)) && !QFile::exists(Log_Path(name)) &&
            note->Open(Note_Path(name), TKeptNote::TExisting::Refuse))
            return name;
    }
    return QString();
}

QString TKeptFolder::Unfinished_Template() const
{
    return d_path + QLatin1Char('/') + TSafeFile::Unfinished_Template();
}

QString TKeptFolder::Unfinished_Path() const
{
    QString path = Unfinished_Template();
    for (int i = path.lastIndexOf(QLatin1Char('-')) + 1; i < path.size(); ++i)
        path[i] = QLatin1Char(static_cast<char>('a' + QRandomGenerator::global()->bounded(26)));
    return path;
}

int TKeptFolder::Links_To(const struct stat& file) const
{
    // The usual case costs nothing.
    if (file.st_nlink == 1)
        return 0;
    const QFileInfoList files = QDir(d_path).entryInfoList(QDir::Files | QDir::Hidden);
    return static_cast<int>(
        std::count_if(files.cbegin(), files.cend(), [&file](const QFileInfo& name) {
            struct stat state = {};
            return lstat(QFile::encodeName(name.filePath()).constData(), &state) == 0 &&
                   state.st_dev == file.st_dev && state.st_ino == file.st_ino;
        }));
}

int TKeptFolder::Links_To(const QString& path) const
{
    struct stat state = {};
    return stat(QFile::encodeName(path).constData(), &state) == 0 ? Links_To(state) : 0;
}

void TKeptFolder::Remove(const QString& name) const
{
    // First the log: without the copy, the next start would convert it again.
    Remove_Log(name);
    QFile::remove(Copy_Path(name));
    QFile::remove(Note_Path(name));
}

void TKeptFolder::Remove_Log(const QString& name) const
{
    // First the log: a log without the other files would be an incomplete document.
    QFile::remove(Log_Path(name));
    QFile::remove(Path(name, log_tail_suffix));
    QFile::remove(Base_Path(name));
}

void TKeptFolder::Clean_Up() const
{
    QStringList patterns = {TSafeFile::Unfinished_Pattern()};
    for (const char* const suffix : {note_suffix, log_tail_suffix, base_suffix})
        patterns += QLatin1Char('*') + QLatin1String(suffix);
    const QFileInfoList files = QDir(d_path).entryInfoList(patterns, QDir::Files | QDir::Hidden);
    for (const QFileInfo& file : files) {
        const QString name = Name_Of(file.filePath());
        const bool is_in_use = QFile::exists(Log_Path(name)) ||
                               (file.fileName().endsWith(QLatin1String(note_suffix)) &&
                                QFile::exists(Copy_Path(name)));
        if (!is_in_use && !Is_Recent(file) && Is_Free(file.filePath()))
            QFile::remove(file.filePath());
    }
}

std::vector<TKeptFile> TKeptFolder::List() const
{
    return List(copy_suffix);
}

std::vector<TKeptFile> TKeptFolder::Abandoned_Logs() const
{
    std::vector<TKeptFile> logs = Abandoned(List(log_suffix));
    const auto is_converted = [this](const TKeptFile& log) {
        return !Has_Log_To_Convert(Name_Of(log.path));
    };
    logs.erase(std::remove_if(logs.begin(), logs.end(), is_converted), logs.end());
    for (TKeptFile& log : logs) {
        const QFileInfo tail(Path(Name_Of(log.path), log_tail_suffix));
        log.size += tail.size();
        log.time = qMax(log.time, tail.lastModified());
    }
    return logs;
}

bool TKeptFolder::Has_Log_To_Convert(const QString& name) const
{
    const bool stays_beside_copy =
        QFile::exists(Copy_Path(name)) && !Note_Fields(name).value(1).isEmpty();
    return QFile::exists(Log_Path(name)) && !stays_beside_copy;
}

/// Leaves out the files whose notes are locked.
std::vector<TKeptFile> TKeptFolder::Abandoned(std::vector<TKeptFile> files) const
{
    const auto is_in_use = [this](const TKeptFile& file) {
        return !Is_Free(Note_Path(Name_Of(file.path)));
    };
    files.erase(std::remove_if(files.begin(), files.end(), is_in_use), files.end());
    return files;
}

void TKeptFolder::Remove_Abandoned(const QString& path) const
{
    if (!Contains(path))
        return;
    for (const TKeptFile& file : Abandoned_Copies()) {
        if (QFileInfo(file.path).fileName() == QFileInfo(path).fileName())
            Remove(Name_Of(file.path));
    }
}

std::vector<TKeptFile> TKeptFolder::List(const char* suffix) const
{
    const QFileInfoList found = QDir(d_path).entryInfoList(
        {QLatin1Char('*') + QLatin1String(suffix)}, QDir::Files, QDir::Time);
    std::vector<TKeptFile> files;
    for (const QFileInfo& info : found) {
        const QList<QByteArray> fields = Note_Fields(Name_Of(info.filePath()));
        files.push_back({info.filePath(), QString::fromUtf8(fields.value(0)), info.lastModified(),
                         info.size(), fields.value(1).toInt(), Read_Stamp(fields.value(2)),
                         fields.value(3) == reported, QString()});
    }
    return files;
}

QList<QByteArray> TKeptFolder::Note_Fields(const QString& name) const
{
    QFile note(Note_Path(name));
    return note.open(QIODevice::ReadOnly) ? note.readAll().split('\0') : QList<QByteArray>();
}

QString TKeptFolder::Name_Of(const QString& path)
{
    return QFileInfo(path).completeBaseName();
}

bool TKeptFolder::Contains(const QString& path) const
{
    const QString folder = QFileInfo(d_path).canonicalFilePath();
    return !folder.isEmpty() && QFileInfo(QFileInfo(path).path()).canonicalFilePath() == folder;
}

bool TKeptFolder::Is_Free(const QString& path)
{
    const int descriptor = open(QFile::encodeName(path).constData(), O_RDONLY | O_CLOEXEC);
    if (descriptor < 0)
        return true;
    const bool is_free = flock(descriptor, LOCK_SH | LOCK_NB) == 0;
    close(descriptor);
    return is_free;
}
