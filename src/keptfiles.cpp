#include "src/keptfiles.h"

#include "src/safefile.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

#include <sys/stat.h>

namespace {

const char* const copy_suffix = ".quillet";
const char* const note_suffix = ".note";

} // namespace

TKeptFolder::TKeptFolder(const QString& path)
    : d_path(path)
{
}

bool TKeptFolder::Prepare() const
{
    const QFileInfo folder(d_path);
    if (!folder.isDir() && mkdir(QFile::encodeName(d_path).constData(), S_IRWXU) != 0)
        return false;
    return QFileInfo(d_path).isWritable();
}

QString TKeptFolder::Copy_Path(const QString& name) const
{
    return d_path + QLatin1Char('/') + name + QLatin1String(copy_suffix);
}

QString TKeptFolder::Note_Path(const QString& name) const
{
    return d_path + QLatin1Char('/') + name + QLatin1String(note_suffix);
}

bool TKeptFolder::Write_Note(const QString& name, const QString& document) const
{
    QFile note(Note_Path(name));
    const QByteArray text = document.toUtf8();
    return note.open(QIODevice::WriteOnly) &&
           note.setPermissions(QFile::ReadOwner | QFile::WriteOwner) &&
           note.write(text) == text.size() && note.flush();
}

void TKeptFolder::Remove(const QString& name) const
{
    QFile::remove(Copy_Path(name));
    QFile::remove(Note_Path(name));
}

std::vector<TKeptFile> TKeptFolder::List() const
{
    const QFileInfoList copies = QDir(d_path).entryInfoList(
        {QLatin1Char('*') + QLatin1String(copy_suffix)}, QDir::Files, QDir::Time);
    std::vector<TKeptFile> files;
    for (const QFileInfo& copy : copies) {
        QFile note(Note_Path(Name_Of(copy.filePath())));
        const QString document =
            note.open(QIODevice::ReadOnly) ? QString::fromUtf8(note.readAll()) : QString();
        files.push_back({copy.filePath(), document, copy.lastModified(), copy.size()});
    }
    return files;
}

QString TKeptFolder::Name_Of(const QString& copy_path)
{
    return QFileInfo(copy_path).completeBaseName();
}

bool TKeptFolder::Contains(const QString& path) const
{
    const QString folder = QFileInfo(d_path).canonicalFilePath();
    return !folder.isEmpty() && QFileInfo(QFileInfo(path).path()).canonicalFilePath() == folder;
}
