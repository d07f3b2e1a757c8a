#include "src/safety/backup.h"

#include "core/safefile.h"
#include "core/samefile.h"

#include <QCryptographicHash>
#include <QFile>
#include <QFileInfo>
#include <QSet>
#include <QTemporaryFile>

#include <algorithm>
#include <cstdio>
#include <fcntl.h>
#include <sys/stat.h>
#include <sys/statvfs.h>
#include <sys/xattr.h>
#include <unistd.h>

namespace {

constexpr mode_t permissions = 07777;

/// Between the digest and the time in the name of a separate backup.
constexpr QLatin1Char separator('-');

QByteArray System_Path(const QString& path)
{
    return QFile::encodeName(path);
}

/// Replaces an existing file.
bool Rename(const QString& from, const QString& to)
{
    return std::rename(System_Path(from).constData(), System_Path(to).constData()) == 0;
}

/// Opens a file for writing that will be renamed to `document`.
bool Open_As(const QString& path, QFile* document)
{
    const int descriptor = open(System_Path(path).constData(), O_WRONLY | O_CLOEXEC);
    return descriptor >= 0 &&
           document->open(descriptor, QIODevice::WriteOnly, QFileDevice::AutoCloseHandle);
}

/// The canonical path of a document, also of one that no longer exists.
QString Document_Path(const QString& document)
{
    const QFileInfo info(document);
    if (info.exists())
        return info.canonicalFilePath();
    const QString folder = QFileInfo(info.absolutePath()).canonicalFilePath();
    return (folder.isEmpty() ? info.absolutePath() : folder) + QLatin1Char('/') + info.fileName();
}

/// Name of a document's backup: a digest, since a path may be too long for a file name.
QString Name_For(const QString& document)
{
    return QString::fromLatin1(
        QCryptographicHash::hash(Document_Path(document).toUtf8(), QCryptographicHash::Sha256)
            .toHex());
}

/// Whether a new file can replace a document without a visible difference: a regular file of this
/// user with a single name, without extended attributes or an ACL, in a writable folder.
/// @param extra_links  number of names that do not count.
bool Is_Replaceable(const QString& document, const struct stat& state, int extra_links)
{
    return S_ISREG(state.st_mode) && state.st_uid == geteuid() &&
           state.st_nlink == nlink_t{1} + static_cast<nlink_t>(extra_links) &&
           llistxattr(System_Path(document).constData(), nullptr, 0) <= 0 &&
           QFileInfo(QFileInfo(document).absolutePath()).isWritable();
}

/// Free space on a file system, in bytes.
double Free_Space(const struct statvfs& disk)
{
    return static_cast<double>(disk.f_bavail) * static_cast<double>(disk.f_frsize);
}

/// Whether a file of the given size fits on the disk. Without room for two versions, only
/// overwriting the old one can succeed.
bool Has_Room(const QFile& file, qint64 size)
{
    struct statvfs disk = {};
    return fstatvfs(file.handle(), &disk) == 0 && static_cast<double>(size) <= Free_Space(disk);
}

/// Gives a new file the group and permissions of another one; false if they still differ.
bool Copy_Permissions(const struct stat& from, int descriptor)
{
    struct stat result = {};
    // Changing the group may reset bits of the mode.
    return fchown(descriptor, static_cast<uid_t>(-1), from.st_gid) == 0 &&
           fchmod(descriptor, from.st_mode & permissions) == 0 && fstat(descriptor, &result) == 0 &&
           result.st_uid == from.st_uid && result.st_gid == from.st_gid &&
           (result.st_mode & permissions) == (from.st_mode & permissions) &&
           flistxattr(descriptor, nullptr, 0) <= 0;
}

} // namespace

TBackup::TBackup(const QString& folder, qint64 limit)
    : d_folder(folder)
    , d_limit(limit)
{
}

QString TBackup::Path_For(const QString& document) const
{
    return d_folder.Copy_Path(Name_For(document));
}

QStringList TBackup::Separate_Paths_For(const QString& document) const
{
    const QString prefix = Name_For(document) + separator;
    QStringList paths;
    for (const TKeptFile& file : List()) {
        if (TKeptFolder::Name_Of(file.path).startsWith(prefix))
            paths += file.path;
    }
    return paths;
}

std::vector<TKeptFile> TBackup::List() const
{
    std::vector<TKeptFile> files = d_folder.List();
    for (TKeptFile& file : files) {
        const QFileInfo note(d_folder.Note_Path(TKeptFolder::Name_Of(file.path)));
        if (note.exists())
            file.time = note.lastModified();
    }
    std::stable_sort(files.begin(), files.end(), [](const TKeptFile& left, const TKeptFile& right) {
        return left.time > right.time;
    });
    return files;
}

std::optional<QString> TBackup::Keep(QFile* document, const TOptions& options) const
{
    const QString path = document->fileName();
    const QFileInfo current(path);
    if (!current.isFile() || current.size() == 0 || !current.isWritable())
        return QString();
    if (!d_folder.Prepare())
        return std::nullopt;

    TKeptNote note;
    QString name = Name_For(path);
    if (options.is_separate)
        name = d_folder.Claim_Name(name + separator, &note);
    else if (!note.Open(d_folder.Note_Path(name), TKeptNote::TExisting::Reuse))
        name.clear(); // another process is backing up the same document
    if (name.isEmpty())
        return std::nullopt;
    // On a full disk, a backup without the document's path is better than none.
    note.Write({Document_Path(path)});
    const QString copy = d_folder.Copy_Path(name);
    if (!Move(document, copy, options) && !Copy(path, copy, options.force_to_disk))
        return std::nullopt;
    Enforce_Limit(name);
    return copy;
}

bool TBackup::Can_Overwrite(const QString& document, qint64 size)
{
    constexpr double block_size = 512; // of st_blocks
    const QByteArray path = System_Path(document);
    struct stat state = {};
    struct statvfs disk = {};
    return stat(path.constData(), &state) != 0 || statvfs(path.constData(), &disk) != 0 ||
           static_cast<double>(size) <=
               block_size * static_cast<double>(state.st_blocks) + Free_Space(disk);
}

/// Makes the document's file the backup and replaces it by an empty one. On failure the document
/// stays as it was.
bool TBackup::Move(QFile* document, const QString& copy, const TOptions& options) const
{
    const QString path = document->fileName();
    struct stat state = {};
    if (lstat(System_Path(path).constData(), &state) != 0 ||
        !Is_Replaceable(path, state, d_folder.Links_To(state) + options.extra_links))
        return false;
    // In the backup folder, where Clean_Up() deletes it after a crash.
    QTemporaryFile empty(d_folder.Unfinished_Template());
    if (!empty.open())
        return false;
    const QString empty_path = empty.fileName();
    const QString linked = d_folder.Unfinished_Path();
    if (!Has_Room(empty, options.new_size) || !Copy_Permissions(state, empty.handle()) ||
        link(System_Path(path).constData(), System_Path(linked).constData()) != 0)
        return false;

    const bool is_moved = (!options.force_to_disk || TSafeFile::Sync(linked)) &&
                          Open_As(empty_path, document) && Rename(linked, copy) &&
                          (!options.force_to_disk || TSafeFile::Sync(QFileInfo(copy).path())) &&
                          // Another program may have replaced the document meanwhile.
                          Is_Same_File(copy, path) && Rename(empty_path, path);
    empty.setAutoRemove(!is_moved);
    // After a failure. And if the previous backup is the same file, rename() leaves both names.
    unlink(System_Path(linked).constData());
    if (!is_moved) {
        document->close();
        return false;
    }
    // The mode is that of a copy. The modification time stays, because another window may read
    // images from this file and would take a new time for a change of the content.
    chmod(System_Path(copy).constData(), S_IRUSR | S_IWUSR);
    return true;
}

/// Copies a document.
bool TBackup::Copy(const QString& document, const QString& path, bool force_to_disk)
{
    TSafeFile copy(path, TSafeFile::TKind::Private);
    const qint64 size = QFileInfo(document).size();
    const auto is_complete = [size](const QString& written) {
        return TSafeFile::Is_Complete(written, size, QByteArray());
    };
    return copy.Copy_From(document) &&
           copy.Commit(is_complete,
                       force_to_disk ? TSafeFile::TReach::Disk : TSafeFile::TReach::System);
}

/// Deletes the oldest backups until the rest fits the limit. The newest one always stays, and so
/// does the newest separate one of each document: no other file may have that version.
void TBackup::Enforce_Limit(const QString& newest) const
{
    qint64 total = QFileInfo(d_folder.Copy_Path(newest)).size();
    QSet<QString> documents;
    for (const TKeptFile& file : List()) {
        const QString name = TKeptFolder::Name_Of(file.path);
        const int digest_end = name.indexOf(separator);
        const QString document = name.left(digest_end);
        const bool is_newest_separate = digest_end >= 0 && !documents.contains(document);
        if (is_newest_separate)
            documents.insert(document);
        if (name == newest)
            continue;
        total += file.size;
        if (total > d_limit && !is_newest_separate)
            d_folder.Remove(name);
    }
}
