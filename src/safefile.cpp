#include "src/safefile.h"

#include <QFile>
#include <QFileInfo>
#include <QTemporaryFile>

#include <cstdio>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

/// Permissions of a file that is made anew: what the user's mask leaves of read and write for all.
mode_t New_File_Mode()
{
    const mode_t mask = umask(0);
    umask(mask);
    return 0666 & ~mask;
}

/// Gives a file the permissions that the file it replaces had.
bool Copy_Mode(const QString& from, const QString& to)
{
    struct stat state = {};
    const bool exists = stat(QFile::encodeName(from).constData(), &state) == 0;
    const mode_t mode = exists ? state.st_mode & 07777 : New_File_Mode();
    return chmod(QFile::encodeName(to).constData(), mode) == 0;
}

/// The file that a path leads to. The target of a link has to be replaced, not the link.
QString Target_Of(const QString& path)
{
    const QString target = QFileInfo(path).canonicalFilePath();
    return target.isEmpty() ? path : target;
}

} // namespace

TSafeFile::TSafeFile(const QString& path)
    : d_target(Target_Of(path))
{
    const QFileInfo target(d_target);
    // A device or a write-protected file has to be refused or taken as the target itself would.
    if (target.exists() && (!target.isFile() || !target.isWritable()))
        return;
    d_file = std::make_unique<QTemporaryFile>(target.path() + QStringLiteral("/.quillet-XXXXXX"));
    if (!d_file->open())
        d_file.reset();
}

TSafeFile::~TSafeFile() = default;

QString TSafeFile::Path_To_Write() const
{
    return d_file ? d_file->fileName() : d_target;
}

bool TSafeFile::Commit(const std::function<bool(const QString&)>& is_complete)
{
    const QString path = Path_To_Write();
    if (!is_complete(path))
        return false;
    if (!d_file)
        return true;
    if (!(d_private || Copy_Mode(d_target, path)) || !Sync(path))
        return false;
    if (std::rename(QFile::encodeName(path).constData(), QFile::encodeName(d_target).constData()) !=
        0)
        return false;
    d_file->setAutoRemove(false);
    d_file.reset();
    // The rename is done; whether it has reached the disk as well changes nothing for the caller.
    Sync(QFileInfo(d_target).path());
    return true;
}

bool TSafeFile::Is_Complete(const QString& path, qint64 size, const QByteArray& end)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly) || (size >= 0 && file.size() != size) ||
        file.size() < end.size())
        return false;
    return file.seek(file.size() - end.size()) && file.read(end.size()) == end;
}

bool TSafeFile::Replace(const QString& path, const QByteArray& content)
{
    TSafeFile target(path);
    QFile file(target.Path_To_Write());
    if (!file.open(QIODevice::WriteOnly) || file.write(content) != content.size() || !file.flush())
        return false;
    file.close();
    constexpr int tail_length = 16;
    return target.Commit([&content](const QString& written) {
        return Is_Complete(written, content.size(), content.right(tail_length));
    });
}

bool TSafeFile::Sync(const QString& path)
{
    const int descriptor = open(QFile::encodeName(path).constData(), O_RDONLY | O_CLOEXEC);
    if (descriptor < 0)
        return false;
    const bool synced = fsync(descriptor) == 0;
    return close(descriptor) == 0 && synced;
}
