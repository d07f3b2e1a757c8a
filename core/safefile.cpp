#include "core/safefile.h"

#include "core/openfile.h"

#include <QFile>
#include <QFileInfo>
#include <QTemporaryFile>

#include <cerrno>
#include <cstdio>
#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

/// A hidden name, so that nobody mistakes the file for a document. Qt replaces each X.
const char* const unfinished_name = ".quillet-XXXXXX";

/// Permissions of a new file: read and write for all, restricted by the umask.
mode_t New_File_Mode()
{
    const mode_t mask = umask(0);
    umask(mask);
    return 0666 & ~mask;
}

QByteArray System_Path(const QString& path)
{
    return QFile::encodeName(path);
}

/// Replaces an existing file.
bool Rename(const QString& from, const QString& to)
{
    return std::rename(System_Path(from).constData(), System_Path(to).constData()) == 0;
}

/// Renames a file. Fails if there is a file with the new name.
bool Rename_To_New(const QString& from, const QString& to)
{
    if (renameat2(AT_FDCWD, System_Path(from).constData(), AT_FDCWD, System_Path(to).constData(),
                  RENAME_NOREPLACE) == 0)
        return true;
    // Some file systems do not support the flag.
    return errno == EINVAL && !QFileInfo::exists(to) && Rename(from, to);
}

/// Gives a file the permissions of the file that it replaces, or those of a new file.
bool Copy_Mode(const QString& from, const QString& to)
{
    struct stat state = {};
    const bool exists = stat(System_Path(from).constData(), &state) == 0;
    const mode_t mode = exists ? state.st_mode & 07777 : New_File_Mode();
    return chmod(System_Path(to).constData(), mode) == 0;
}

/// Whether the target must keep its inode: another user owns it, or it has several hard links.
bool Must_Keep_Inode(const QString& target, int extra_links)
{
    const auto replaceable_links = nlink_t{1} + static_cast<nlink_t>(extra_links);
    struct stat state = {};
    return stat(System_Path(target).constData(), &state) == 0 && S_ISREG(state.st_mode) &&
           (state.st_uid != geteuid() || state.st_nlink > replaceable_links);
}

/// Overwrites an existing file. Does not use O_CREAT, which Linux refuses for files of other users
/// in sticky folders.
bool Copy_Content(const QString& from, const QString& to)
{
    const std::shared_ptr<const TOpenFile> source = TOpenFile::Open(from);
    QFile copy(to);
    return source && copy.open(QIODevice::WriteOnly | QIODevice::ExistingOnly) &&
           source->Copy_To(&copy, 0, source->Size()) && copy.flush();
}

/// The file that a path refers to: a link's target, not the link itself.
QString Target_Of(const QString& path)
{
    const QFileInfo info(path);
    QString target = info.canonicalFilePath();
    if (!target.isEmpty())
        return target;
    // The target of a link need not exist.
    return info.isSymLink() ? info.symLinkTarget() : path;
}

} // namespace

bool TSafeFile::d_keeps_existing_files = false;

TSafeFile::TSafeFile(const QString& path, TKind kind, int extra_links)
    : d_target(Target_Of(path))
    , d_kind(kind)
    , d_extra_links(extra_links)
{
    const QFileInfo target(d_target);
    // A device or a write-protected file is opened directly, with the same success or failure.
    if (!d_keeps_existing_files && target.exists() && (!target.isFile() || !target.isWritable()))
        return;
    d_file =
        std::make_unique<QTemporaryFile>(target.path() + QLatin1Char('/') + Unfinished_Template());
    // The umask may deny even the owner access.
    if (!d_file->open() || fchmod(d_file->handle(), S_IRUSR | S_IWUSR) != 0)
        d_file.reset();
    if (!d_file)
        return;
    flock(d_file->handle(), LOCK_EX | LOCK_NB);
    d_registration.emplace(d_file->fileName());
}

TSafeFile::~TSafeFile() = default;

QString TSafeFile::Path_To_Write() const
{
    return d_file ? d_file->fileName() : d_target;
}

bool TSafeFile::Copy_From(const QString& source)
{
    return d_file && Copy_Content(source, Path_To_Write());
}

bool TSafeFile::Commit(const std::function<bool(const QString&)>& is_complete, TReach reach)
{
    const QString path = Path_To_Write();
    if ((!d_file && d_kind == TKind::Private) || !is_complete(path))
        return false;
    if (!d_file)
        return true;
    if ((d_kind == TKind::Like_Target && !Copy_Mode(d_target, path)) ||
        (reach == TReach::Disk && !Sync(path)) || !Replace_Target(reach))
        return false;
    d_file.reset();
    // The rename cannot be undone, so a failure to sync the folder is ignored.
    if (reach == TReach::Disk)
        Sync(QFileInfo(d_target).path());
    return true;
}

bool TSafeFile::Replace_Target(TReach reach)
{
    if (!d_keeps_existing_files && d_kind == TKind::Like_Target &&
        Must_Keep_Inode(d_target, d_extra_links))
        return Overwrite_Target(reach);
    const auto rename = d_keeps_existing_files ? Rename_To_New : Rename;
    if (!rename(Path_To_Write(), d_target))
        return false;
    d_file->setAutoRemove(false);
    return true;
}

/// Copies the new content into the target. The complete new file has a visible name meanwhile, and
/// keeps it if copying fails or a signal ends the process; a message then contains its path.
bool TSafeFile::Overwrite_Target(TReach reach)
{
    const QString complete = Make_Visible();
    if (complete.isEmpty())
        return false;
    const QString message =
        QStringLiteral("'%1' is incomplete; the complete new version is in '%2'")
            .arg(d_target, complete);
    d_registration.emplace(TUnfinishedFile::TMessage{message});
    if (!Copy_Content(complete, d_target) || (reach == TReach::Disk && !Sync(d_target))) {
        d_registration.reset();
        // The command-line tool prints critical messages.
        qCritical("%s", qUtf8Printable(message));
        return false;
    }
    d_registration.reset();
    QFile::remove(complete);
    return true;
}

/// Renames the new file to an unused visible name beside the target. Returns its path; empty on
/// failure.
QString TSafeFile::Make_Visible()
{
    const QString base = d_target + QLatin1String(".new");
    constexpr int attempts = 100;
    for (int attempt = 1; attempt <= attempts; ++attempt) {
        QString path = attempt == 1 ? base : base + QLatin1Char('-') + QString::number(attempt);
        struct stat state = {};
        if (lstat(System_Path(path).constData(), &state) == 0)
            continue;
        if (!Rename(Path_To_Write(), path))
            return QString();
        d_file->setAutoRemove(false);
        return path;
    }
    return QString();
}

bool TSafeFile::Is_Complete(const QString& path, qint64 size, const QByteArray& end)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly) || (size >= 0 && file.size() != size))
        return false;
    // Seeking to a negative position fails.
    return file.seek(file.size() - end.size()) && file.read(end.size()) == end;
}

bool TSafeFile::Replace(const QString& path, const QByteArray& content, int extra_links,
                        QString* problem)
{
    TSafeFile target(path, TKind::Like_Target, extra_links);
    if (target.Write(content))
        return true;
    if (problem)
        *problem = target.Write_Problem();
    return false;
}

/// Writes the new content and commits it.
bool TSafeFile::Write(const QByteArray& content)
{
    QFile file(Path_To_Write());
    if (!file.open(QIODevice::WriteOnly) || file.write(content) != content.size() || !file.flush())
        return false;
    file.close();
    constexpr int tail_length = 16;
    return Commit([&content](const QString& written) {
        return Is_Complete(written, content.size(), content.right(tail_length));
    });
}

QString TSafeFile::Write_Problem() const
{
    // The new content still takes up the space that it found on the disk, so more of it fails in
    // the same way.
    constexpr int block_size = 64 * 1024;
    // Make_Visible() may have renamed it.
    if (d_file && !d_file->exists())
        return QString();
    QFile file(Path_To_Write());
    const bool is_open = file.open(QIODevice::Append);
    if (is_open && (!d_file || (file.write(QByteArray(block_size, '\0')) > 0 && file.flush())))
        return QString();
    return file.errorString();
}

bool TSafeFile::Sync(const QString& path)
{
    const int descriptor = open(System_Path(path).constData(), O_RDONLY | O_CLOEXEC);
    if (descriptor < 0)
        return false;
    // Some file systems do not support fsync on folders (EINVAL). That is not a failure.
    const bool synced = fsync(descriptor) == 0 || errno == EINVAL;
    return close(descriptor) == 0 && synced;
}

QString TSafeFile::Unfinished_Template()
{
    return QString::fromLatin1(unfinished_name);
}

QString TSafeFile::Unfinished_Pattern()
{
    return Unfinished_Template().replace(QLatin1Char('X'), QLatin1Char('?'));
}
