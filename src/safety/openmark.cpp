#include "src/safety/openmark.h"

#include "src/safety/keptfiles.h"

#include <QCryptographicHash>
#include <QDir>
#include <QFile>
#include <QFileInfo>

#include <cerrno>

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

constexpr int name_length = 64; ///< of a mark: a digest

/// Opens a mark, which may exist. Returns its descriptor; negative on failure.
int Open_Mark(const QString& path)
{
    return open(QFile::encodeName(path).constData(), O_RDWR | O_CREAT | O_CLOEXEC | O_NOFOLLOW,
                S_IRUSR | S_IWUSR);
}

/// Removes a mark unless another window has locked it.
void Remove_Unused(int descriptor, const QString& path)
{
    if (flock(descriptor, LOCK_EX | LOCK_NB) == 0)
        QFile::remove(path);
}

bool Is_Removed(int descriptor)
{
    struct stat state = {};
    return fstat(descriptor, &state) == 0 && state.st_nlink == 0;
}

} // namespace

TOpenMark::TOpenMark(const QString& folder)
    : d_folder(folder)
{
    const QFileInfoList marks = QDir(folder).entryInfoList(QDir::Files);
    for (const QFileInfo& mark : marks) {
        if (mark.fileName().size() != name_length || mark.size() != 0)
            continue;
        const int descriptor = Open_Mark(mark.filePath());
        Remove_Unused(descriptor, mark.filePath());
        close(descriptor);
    }
}

bool TOpenMark::Set(const QString& document)
{
    Clear();
    const QString path = QFileInfo(document).canonicalFilePath();
    if (path.isEmpty() || !TKeptFolder(d_folder).Prepare())
        return false;
    const QByteArray name =
        QCryptographicHash::hash(QFile::encodeName(path), QCryptographicHash::Sha256).toHex();
    d_path = QDir(d_folder).filePath(QString::fromLatin1(name));
    d_descriptor = Open_Mark(d_path);
    const bool is_marked = flock(d_descriptor, LOCK_EX | LOCK_NB) != 0 && errno == EWOULDBLOCK;
    // Waits at most for a window that is just about to share its own lock.
    flock(d_descriptor, LOCK_SH);
    // Another window may have removed the mark before it was locked.
    return Is_Removed(d_descriptor) ? Set(document) : is_marked;
}

void TOpenMark::Clear()
{
    if (d_descriptor < 0)
        return;
    // The last window removes the file.
    Remove_Unused(d_descriptor, d_path);
    close(d_descriptor);
    d_descriptor = -1;
}
