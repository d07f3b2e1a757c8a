#include "src/safety/safetynet.h"

#include "core/openfile.h"
#include "core/safefile.h"
#include "src/data.h"
#include "src/format/projectfile.h"
#include "src/safety/logconversion.h"

#include <QFile>
#include <QFileInfo>

#include <cstdio>

namespace {

/// Syncs a file and, since it may be a new one, its folder entry. A folder that cannot be opened
/// for reading cannot be synced; the file then counts as saved all the same.
bool Sync_To_Disk(const QString& path)
{
    const QFileInfo folder(QFileInfo(QFileInfo(path).canonicalFilePath()).path());
    return TSafeFile::Sync(path) && (!folder.isReadable() || TSafeFile::Sync(folder.filePath()));
}

} // namespace

TSafetyNet::TSafetyNet(const QString& settings_folder, TReadState read_state)
    : d_settings_folder(settings_folder)
    , d_backup(Backup_Folder(settings_folder))
    , d_folder(Recovery_Folder(settings_folder))
    , d_log(Recovery_Folder(settings_folder))
    , d_read_state(std::move(read_state))
    , d_abandoned(d_folder.Abandoned_Copies())
{
    d_folder.Clean_Up();
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
    return TKeptFolder(Backup_Folder(settings_folder)).Links_To(path) +
           TKeptFolder(Recovery_Folder(settings_folder)).Links_To(path);
}

bool TSafetyNet::Has_Abandoned_Logs() const
{
    return !d_folder.Abandoned_Logs().empty();
}

void TSafetyNet::Convert_Abandoned_Logs(const TProgressReport& report)
{
    d_abandoned =
        LogConversion::Convert_Abandoned(d_folder, Backup_Folder(d_settings_folder), report);
    const std::vector<TKeptFile> copies = d_folder.Abandoned_Copies();
    d_abandoned.insert(d_abandoned.end(), copies.cbegin(), copies.cend());
}

void TSafetyNet::Record_Change(const QString& document)
{
    d_is_pending = true;
    if (d_clock.elapsed() < d_retry_time || !Update(document))
        return;
    if (d_clock.elapsed() - d_sync_time > Sync_Interval)
        Sync();
    Store_References();
}

void TSafetyNet::Flush(const QString& document)
{
    // Changes of page names are not recorded one by one.
    if ((d_is_pending || d_log.Exists()) && Update(document)) {
        Sync();
        d_log.Shorten();
    }
}

bool TSafetyNet::Update(const QString& document)
{
    const qint64 begin = d_clock.elapsed();
    if (!d_log.Exists())
        d_sync_time = begin;
    const TWorkState state = d_read_state();
    d_is_pending = !d_log.Update(state, &d_base, {document, Own_Stamp(document)});
    if (d_is_pending) {
        // A document without pages has no work that could be lost.
        if (state.data->Page_Count() > 0)
            Report_Once(QStringLiteral("cannot write unsaved work to"));
        d_retry_time = Time_After_Rest(begin);
    }
    return !d_is_pending;
}

bool TSafetyNet::Sync()
{
    // Another program may have overwritten it. The labels are stored at once, the images one by
    // one, since that may take long.
    if (d_base.Exists() && !d_base.Is_Intact()) {
        d_base = TBaseFile();
        d_log.Store_Labels(*d_read_state().data);
    }
    const bool is_synced = (!d_log.Has_References() || d_base.Sync()) && d_log.Sync();
    if (!is_synced)
        Report_Once(QStringLiteral("cannot sync unsaved work in"));
    d_sync_time = d_clock.elapsed();
    return is_synced;
}

/// Stores a part of the base file in the log if the file is not protected. Takes at most 2 % of the
/// time.
void TSafetyNet::Store_References()
{
    constexpr qint64 duration = 5; // milliseconds
    const qint64 begin = d_clock.elapsed();
    if (begin < d_store_time || d_base.Is_Protected() || !d_log.Has_References())
        return;
    const TData& data = *d_read_state().data;
    while (d_clock.elapsed() - begin < duration && d_log.Has_References() &&
           d_log.Store_Reference(data)) {
    }
    d_store_time = Time_After_Rest(begin);
}

/// The time when an operation that began at another time may be repeated.
qint64 TSafetyNet::Time_After_Rest(qint64 begin) const
{
    const qint64 now = d_clock.elapsed();
    return now + Rest_Factor * qMax<qint64>(1, now - begin);
}

bool TSafetyNet::Open_For_Saving(QFile* document, qint64 size, QString* other_version)
{
    // Opening the document empties it. On a full disk, no complete file would be left.
    if (!Back_Up(document, size, other_version) &&
        !TBackup::Can_Overwrite(document->fileName(), size))
        return false;
    // Opening empties the file, which may contain images of the open document.
    return document->isOpen() || (TOpenFile::Copy_Before_Overwriting(document->fileName()) &&
                                  document->open(QIODevice::WriteOnly));
}

/// Backs up a document; returns whether the work survives if the document is lost.
bool TSafetyNet::Back_Up(QFile* document, qint64 size, QString* other_version)
{
    const QString path = document->fileName();
    const bool is_foreign = TFileStamp::Of(path) != Own_Stamp(path);
    // An incomplete file must not replace the backup of a complete one.
    if (!is_foreign && path == d_incomplete_path && !ProjectFile::Is_Whole(path))
        return true;
    if (d_is_pending || d_log.Exists())
        Update(path);
    // With all work on the disk there is no need to wait for the backup.
    const std::optional<QString> backup =
        d_backup.Keep(document, {!Is_Work_On_Disk(), is_foreign, size, d_folder.Links_To(path)});
    if (backup && is_foreign)
        *other_version = *backup;
    if (!backup)
        Report_Once(QStringLiteral("cannot write backups to"));
    if (backup && d_base.Exists())
        return true;
    // The backup does not have what the log refers to.
    while (d_log.Has_References() && d_log.Store_Reference(*d_read_state().data)) {
    }
    return backup || Is_Work_On_Disk();
}

/// Whether the log has the whole document. Syncs it.
bool TSafetyNet::Is_Work_On_Disk()
{
    return d_log.Exists() && Sync() && !d_is_pending && !d_log.Has_References();
}

bool TSafetyNet::Is_Changed_Elsewhere(const QString& document) const
{
    const TFileStamp own = Own_Stamp(document);
    return own.Exists() && TFileStamp::Of(document) != own;
}

/// The stamp that a file had when it was last opened or saved as this document; a stamp of a
/// missing file if it was not.
TFileStamp TSafetyNet::Own_Stamp(const QString& document) const
{
    return QFileInfo(d_version.path) == QFileInfo(document) ? d_version.stamp : TFileStamp();
}

void TSafetyNet::After_Save(const QString& document, qint64 size, const TFilePlaces& places)
{
    d_version = {document, TFileStamp::Of(document)};
    const bool is_whole = d_version.stamp.size == size && ProjectFile::Is_Whole(document);
    // The saved file must be on the disk before other copies of the work are deleted.
    const bool replaces_copy = d_log.Exists() || d_folder.Contains(d_opened_path);
    if (!is_whole || (replaces_copy && !Sync_To_Disk(document))) {
        d_incomplete_path = document;
        After_Failed_Save(document);
        return;
    }
    d_incomplete_path.clear();
    d_log.Discard();
    Reset();
    if (QFileInfo(d_opened_path) != QFileInfo(document))
        d_folder.Remove_Abandoned(d_opened_path);
    d_opened_path = document;
    d_recovered_path.clear();
    d_base = TBaseFile(document, d_version.stamp, places);
}

void TSafetyNet::After_Failed_Save(const QString& document)
{
    if (Update(document))
        Sync();
}

void TSafetyNet::Discard(const QString& opened)
{
    d_log.Discard();
    if (QFileInfo(d_recovered_path) != QFileInfo(opened))
        d_folder.Remove_Abandoned(d_recovered_path);
    Release();
}

void TSafetyNet::Release()
{
    d_log.Sync();
    d_log.Release();
    d_base = TBaseFile();
    d_opened_path.clear();
    d_recovered_path.clear();
    d_version = TWorkDocument();
    Reset();
}

void TSafetyNet::After_Open(const QString& path, const TFileStamp& stamp, const TFilePlaces& places)
{
    d_opened_path = path;
    d_version = {path, stamp};
    d_base = TBaseFile(path, stamp, places);
}

void TSafetyNet::After_Recovery(const TKeptFile& copy)
{
    d_recovered_path = copy.path;
    d_version = {copy.document, copy.document_stamp};
}

void TSafetyNet::Reset()
{
    d_is_pending = false;
    d_retry_time = 0;
    d_store_time = 0;
}

void TSafetyNet::Report_Once(const QString& problem)
{
    // Not qWarning(): the user's environment may filter or redirect it.
    if (!d_has_reported)
        std::fprintf(stderr, "quillet: %s the settings folder\n", qPrintable(problem));
    d_has_reported = true;
}
