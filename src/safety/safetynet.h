#pragma once

#include "core/progressreport.h"
#include "src/safety/backup.h"
#include "src/safety/basefile.h"
#include "src/safety/keptfiles.h"
#include "src/safety/workdocument.h"
#include "src/safety/worklog.h"
#include "src/safety/workstate.h"

#include <QElapsedTimer>
#include <QString>

class QFile;

/// Protects the user's work: backs up the previous version of a saved document and stores unsaved
/// changes in a work log.
///
/// The window calls it on every change, before and after each save, and when the user pauses. There
/// is no timer. If the settings folder is not writable, the program works without protection and
/// reports that once on standard error, as soon as there is work to lose.
class TSafetyNet
{
public:
    /// Folders of the copies below the settings folder.
    static QString Backup_Folder(const QString& settings_folder);
    static QString Recovery_Folder(const QString& settings_folder);

    /// Number of names in both folders that are hard links to a file.
    static int Links_To(const QString& path, const QString& settings_folder);

    /// @param settings_folder  contains both folders.
    /// @param read_state       reads the document.
    TSafetyNet(const QString& settings_folder, TReadState read_state);

    /// Whether crashed or killed processes left work logs.
    bool Has_Abandoned_Logs() const;
    /// Converts these work logs to recovery copies.
    /// @param report  is called before each page.
    void Convert_Abandoned_Logs(const TProgressReport& report);
    /// The work of processes that ended before this one started: logs that could not be converted,
    /// if the user was not shown them before, and recovery copies.
    const std::vector<TKeptFile>& Abandoned() const { return d_abandoned; }

    /// Stores a change of the document, and syncs it if the last sync was a while ago.
    /// @param document  path of the document; empty if it was never saved.
    void Record_Change(const QString& document);

    /// Stores changes that were not recorded, and syncs them. Called when the window loses focus or
    /// a modal dialog opens.
    void Flush(const QString& document);

    /// Stores the PNG of an image of the document, so that recovered work need not be encoded
    /// again. Does not sync: losing the PNG costs only time.
    void Store_Png(const TPageImage& image) { d_log.Store_Png(image); }

    /// Whether another program or window has changed this document's file since it was opened or
    /// saved.
    bool Is_Changed_Elsewhere(const QString& document) const;

    /// Backs up the file that a save is about to replace, and opens it for writing. Fails if there
    /// is no other complete copy and the disk has no room for the new version.
    /// @param size           size of the version to be saved, in bytes.
    /// @param other_version  gets the path of the backup if the file is not the version of this
    ///                       document that was last opened or saved. Later saves do not replace it.
    bool Open_For_Saving(QFile* document, qint64 size, QString* other_version);

    /// Discards the unsaved work if the saved file is complete. Otherwise stores it, since the
    /// program counts the document as saved.
    /// @param size    expected size of the file in bytes.
    /// @param places  of the pages in the file.
    void After_Save(const QString& document, qint64 size, const TFilePlaces& places);

    /// Stores the unsaved work, since the program counts the document as saved after a failed save.
    void After_Failed_Save(const QString& document);

    /// Discards the unsaved work, which the user agreed to lose.
    /// @param opened  path of the file that was opened instead; it is not deleted.
    void Discard(const QString& opened = QString());

    /// Ends the work on this document and leaves its unsaved work for the next start.
    void Release();

    /// Records the file that the document was read from. If it is an abandoned recovery copy, that
    /// copy is deleted once the document has been saved elsewhere.
    /// @param stamp   the file's stamp before it was read.
    /// @param places  of the pages in the file; empty if the file is no project.
    void After_Open(const QString& path, const TFileStamp& stamp, const TFilePlaces& places);

    /// Records that the abandoned recovery copy just opened is the unsaved work of its document.
    /// Saving that document or discarding the work deletes the copy.
    void After_Recovery(const TKeptFile& copy);

private:
    /// Longest time between two syncs while the user edits, in milliseconds.
    static constexpr qint64 Sync_Interval = 5000;
    /// Rest after an operation that may take long, in multiples of its duration: 2 % of the time.
    static constexpr qint64 Rest_Factor = 50;

    bool Back_Up(QFile* document, qint64 size, QString* other_version);
    bool Is_Work_On_Disk();
    TFileStamp Own_Stamp(const QString& document) const;
    bool Update(const QString& document);
    bool Sync();
    void Store_References();
    qint64 Time_After_Rest(qint64 begin) const;
    void Reset();
    void Report_Once(const QString& problem);

    QString d_settings_folder;
    TBackup d_backup;
    TKeptFolder d_folder; ///< of the recovery copies and logs
    TWorkLog d_log;
    TBaseFile d_base;
    TReadState d_read_state;
    std::vector<TKeptFile> d_abandoned;
    QElapsedTimer d_clock;
    qint64 d_sync_time = 0;    ///< of the last sync
    qint64 d_retry_time = 0;   ///< earliest time of an update, after one failed
    qint64 d_store_time = 0;   ///< earliest time to store references
    QString d_opened_path;     ///< file that the document was read from or saved to
    QString d_recovered_path;  ///< recovery copy that is this document's unsaved work
    TWorkDocument d_version;   ///< file that was last opened or saved, as it was then
    QString d_incomplete_path; ///< target of the last save, if it was left incomplete
    bool d_is_pending = false; ///< there are changes that the log does not have
    bool d_has_reported = false;
};
