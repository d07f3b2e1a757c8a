#include "src/safety/openmark.h"

#include "src/safety/keptfiles.h"

#include <QCryptographicHash>
#include <QDir>
#include <QFile>
#include <QFileInfo>

#include <cerrno>

#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

TOpenMark::TOpenMark(const QString& folder)
    : d_folder(folder)
{
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
    d_descriptor = open(QFile::encodeName(d_path).constData(),
                        O_RDWR | O_CREAT | O_CLOEXEC | O_NOFOLLOW, S_IRUSR | S_IWUSR);
    const bool is_marked = flock(d_descriptor, LOCK_EX | LOCK_NB) != 0 && errno == EWOULDBLOCK;
    // Waits at most for a window that is just about to share its own lock.
    flock(d_descriptor, LOCK_SH);
    return is_marked;
}

void TOpenMark::Clear()
{
    if (d_descriptor < 0)
        return;
    // The last window removes the file.
    if (flock(d_descriptor, LOCK_EX | LOCK_NB) == 0)
        QFile::remove(d_path);
    close(d_descriptor);
    d_descriptor = -1;
}
