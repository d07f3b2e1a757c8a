#include "src/safety/safetynet.h"

#include "core/safefile.h"
#include "src/format/projectfile.h"

#include <QFileInfo>

#include <cstdio>

namespace {

/// Syncs a file and, since it may be a new one, its folder entry.
bool Sync_To_Disk(const QString& path)
{
    return TSafeFile::Sync(path) &&
           TSafeFile::Sync(QFileInfo(QFileInfo(path).canonicalFilePath()).path());
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

void TSafetyNet::Before_Save(const QString& document)
{
    // An incomplete file must not replace the backup of a complete one.
    if (document == d_incomplete_path && !ProjectFile::Is_Whole(document))
        return;
    // With a recovery copy on the disk there is no need to wait for the backup.
    if (!d_backup.Keep(document, !d_recovery.Has_Copy()))
        Report_Once(QStringLiteral("cannot write backups to"));
}

void TSafetyNet::After_Save(const QString& document, qint64 size)
{
    const bool is_whole = QFileInfo(document).size() == size && ProjectFile::Is_Whole(document);
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
}

void TSafetyNet::Discard()
{
    d_recovery.Discard();
    Release();
}

void TSafetyNet::Release()
{
    d_recovery.Release();
    d_opened_path.clear();
    Reset();
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
