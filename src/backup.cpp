#include "src/backup.h"

#include "src/safefile.h"

#include <QCryptographicHash>
#include <QFile>
#include <QFileInfo>

#include <cstdio>

namespace {

/// The path under which a document is known, however it was reached.
QString Document_Path(const QString& document)
{
    const QFileInfo info(document);
    return info.exists() ? info.canonicalFilePath() : info.absoluteFilePath();
}

/// Paths are longer than file names may be and hold slashes, so copies are named by a digest.
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
    const QFileInfo present(document);
    if (!present.isFile() || present.size() == 0)
        return true;
    if (!d_folder.Prepare())
        return false;

    const QString name = Name_For(document);
    const QString copy = d_folder.Copy_Path(name);
    // The copy before is replaced only by a whole one.
    const QString unfinished = copy + QStringLiteral(".new");
    QFile::remove(unfinished);
    const bool copied = QFile::copy(document, unfinished) &&
                        QFileInfo(unfinished).size() == present.size() &&
                        QFile::setPermissions(unfinished, QFile::ReadOwner | QFile::WriteOwner) &&
                        (!force_to_disk || TSafeFile::Sync(unfinished));
    const bool kept = copied && d_folder.Write_Note(name, Document_Path(document)) &&
                      std::rename(QFile::encodeName(unfinished).constData(),
                                  QFile::encodeName(copy).constData()) == 0;
    if (!kept) {
        QFile::remove(unfinished);
        return false;
    }
    Bound();
    return true;
}

/// Removes the oldest backups until the rest fits the limit. The newest one always stays.
void TBackup::Bound() const
{
    qint64 total = 0;
    bool newest = true;
    for (const TKeptFile& file : List()) {
        total += file.size;
        if (total > d_limit && !newest)
            d_folder.Remove(TKeptFolder::Name_Of(file.path));
        newest = false;
    }
}
