#include "src/safety/safetynet.h"

#include "core/safefile.h"
#include "src/format/projectfile.h"

#include <QFile>
#include <QFileInfo>

#include <cstdio>
#include <sys/stat.h>

namespace {

/// Syncs a file and, since it may be a new one, its folder entry. A folder that cannot be opened
/// for reading cannot be synced; the file then counts as saved all the same.
bool Sync_To_Disk(const QString& path)
{
    const QFileInfo folder(QFileInfo(QFileInfo(path).canonicalFilePath()).path());
    return TSafeFile::Sync(path) && (!folder.isReadable() || TSafeFile::Sync(folder.filePath()));
}

} // namespace

TSafetyNet::TSafetyNet(const QString& settings_folder, TWriteProject write_project)
    : d_backup(Backup_Folder(settings_folder))
    , d_recovery(Recovery_Folder(settings_folder))
    , d_write_project(std::move(write_project))
    , d_abandoned(d_recovery.Abandoned())
{
    d_recovery.Clean_Up();
    d_backup.Clean_Up();
    d_clock.start();
}

QString TSafetyNet::Backup_Folder(const QString& settings_folder)
{
    return settings_folder + QStringLiteral("/backup");
}

QString TSafetyNet::Recovery_Folder(const QString& settings_folder)
{
    return settings_folder + QStringLiteral("/recovery");
}

int TSafetyNet::Links_To(const QString& path, const QString& settings_folder)
{
    struct stat state = {};
    if (stat(QFile::encodeName(path).constData(), &state) != 0)
        return 0;
    return TKeptFolder(Backup_Folder(settings_folder)).Links_To(state) +
           TKeptFolder(Recovery_Folder(settings_folder)).Links_To(state);
}

void TSafetyNet::Record_Change(const QString& document)
{
    d_is_pending = true;
    if (d_policy.Is_Due(d_clock.elapsed()))
        Copy(document);
}

void TSafetyNet::Copy_Pending(const QString& document)
{
    if (d_is_pending)
        Copy(document);
}

void TSafetyNet::Copy(const QString& document)
{
    const qint64 begin = d_clock.elapsed();
    // Building the document takes long; skip it if the copy cannot be written anyway.
    const bool is_possible = d_recovery.Is_Possible();
    TProjectWriter project;
    if (is_possible)
        d_write_project(&project);
    if (is_possible && d_recovery.Write(project, document))
        d_is_pending = false;
    else
        Report_Once(QStringLiteral("cannot write recovery copies to"));
    d_policy.Record_Copy(begin, d_clock.elapsed());
}

bool TSafetyNet::Open_For_Saving(QFile* document, qint64 size, QString* other_version)
{
    Back_Up(document, size, other_version);
    return document->isOpen() || document->open(QIODevice::WriteOnly);
}

void TSafetyNet::Back_Up(QFile* document, qint64 size, QString* other_version)
{
    const QString path = document->fileName();
    const bool is_changed_elsewhere = Is_Changed_Elsewhere(path);
    // An incomplete file must not replace the backup of a complete one.
    if (!is_changed_elsewhere && path == d_incomplete_path && !ProjectFile::Is_Whole(path))
        return;
    // With a recovery copy on the disk there is no need to wait for the backup.
    const std::optional<QString> backup =
        d_backup.Keep(document, {!d_recovery.Has_Copy(), is_changed_elsewhere, size});
    if (!backup)
        Report_Once(QStringLiteral("cannot write backups to"));
    else if (is_changed_elsewhere)
        *other_version = *backup;
}

/// Whether another program or window has changed a file since this one opened or saved it.
bool TSafetyNet::Is_Changed_Elsewhere(const QString& document) const
{
    return d_stamp.Exists() && QFileInfo(d_stamped_path) == QFileInfo(document) &&
           TFileStamp::Of(document) != d_stamp;
}

void TSafetyNet::After_Save(const QString& document, qint64 size)
{
    d_stamped_path = document;
    d_stamp = TFileStamp::Of(document);
    const bool is_whole = d_stamp.size == size && ProjectFile::Is_Whole(document);
    // The saved file must be on the disk before a recovery copy is deleted.
    const bool replaces_copy = d_recovery.Has_Copy() || d_recovery.Contains(d_opened_path);
    if (!is_whole || (replaces_copy && !Sync_To_Disk(document))) {
        d_incomplete_path = document;
        Copy(document);
        return;
    }
    d_incomplete_path.clear();
    d_recovery.Discard();
    Reset();
    if (QFileInfo(d_opened_path) != QFileInfo(document))
        d_recovery.Remove_Abandoned(d_opened_path);
    d_opened_path = document;
    d_recovered_path.clear();
}

void TSafetyNet::Discard(const QString& opened)
{
    d_recovery.Discard();
    if (QFileInfo(d_recovered_path) != QFileInfo(opened))
        d_recovery.Remove_Abandoned(d_recovered_path);
    Release();
}

void TSafetyNet::Release()
{
    d_recovery.Release();
    d_opened_path.clear();
    d_recovered_path.clear();
    d_stamp = TFileStamp();
    Reset();
}

void TSafetyNet::After_Open(const QString& path, const TFileStamp& stamp)
{
    d_opened_path = path;
    d_stamped_path = path;
    d_stamp = stamp;
}

void TSafetyNet::After_Recovery(const TKeptFile& copy)
{
    d_recovered_path = copy.path;
    d_stamped_path = copy.document;
    // No version has this stamp. If the document was saved after the copy was written, it has
    // changes that the copy lacks.
    const TFileStamp newer = {0, 0, 0};
    d_stamp =
        QFileInfo(copy.document).lastModified() > copy.time ? newer : TFileStamp::Of(copy.document);
}

void TSafetyNet::Reset()
{
    d_policy.Reset();
    d_is_pending = false;
}

void TSafetyNet::Report_Once(const QString& problem)
{
    // Not qWarning(): the user's environment may filter or redirect it.
    if (!d_has_reported)
        std::fprintf(stderr, "quillet: %s the settings folder\n", qPrintable(problem));
    d_has_reported = true;
}
