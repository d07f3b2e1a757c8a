#include "src/safety/backup.h"

#include "core/safefile.h"

#include <QCryptographicHash>
#include <QFileInfo>

namespace {

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

bool TBackup::Keep(const QString& document, bool force_to_disk) const
{
    const QFileInfo current(document);
    if (!current.isFile() || current.size() == 0 || !current.isWritable())
        return true;
    if (!d_folder.Prepare())
        return false;

    const QString name = Name_For(document);
    TKeptNote note;
    // The note is locked while another process backs up the same document.
    if (!note.Open(d_folder.Note_Path(name), TKeptNote::TExisting::Reuse) ||
        !note.Write(Document_Path(document)))
        return false;
    TSafeFile copy(d_folder.Copy_Path(name), TSafeFile::TKind::Private);
    const auto is_complete = [&current](const QString& path) {
        return TSafeFile::Is_Complete(path, current.size(), QByteArray());
    };
    if (!copy.Copy_From(document) ||
        !copy.Commit(is_complete,
                     force_to_disk ? TSafeFile::TReach::Disk : TSafeFile::TReach::System))
        return false;
    Enforce_Limit(name);
    return true;
}

/// Deletes the oldest backups until the rest fits the limit. The newest one always stays.
void TBackup::Enforce_Limit(const QString& newest) const
{
    qint64 total = QFileInfo(d_folder.Copy_Path(newest)).size();
    for (const TKeptFile& file : List()) {
        const QString name = TKeptFolder::Name_Of(file.path);
        if (name == newest)
            continue;
        total += file.size;
        if (total > d_limit)
            d_folder.Remove(name);
    }
}
