#pragma once

#include "src/safety/backup.h"
#include "src/safety/filestamp.h"
#include "src/safety/recovery.h"

#include <QElapsedTimer>
#include <QString>

#include <functional>

class QFile;
class TProjectWriter;

/// Protects the user's work: backs up the previous version of a saved document and writes recovery
/// copies of unsaved changes.
///
/// The window calls it on every change, before and after each save, and when the user pauses. There
/// is no timer. If the settings folder is not writable, the program works without protection and
/// reports that once on standard error.
class TSafetyNet
{
public:
    /// Writes the whole document, with images in their original encoding.
    using TWriteProject = std::function<void(TProjectWriter*)>;

    /// Folders of the copies below the settings folder.
    static QString Backup_Folder(const QString& settings_folder);
    static QString Recovery_Folder(const QString& settings_folder);

    /// Number of names in both folders that are hard links to a file.
    static int Links_To(const QString& path, const QString& settings_folder);

    /// @param settings_folder  contains both folders.
    /// @param write_project    called for each recovery copy.
    TSafetyNet(const QString& settings_folder, TWriteProject write_project);

    /// Recovery copies that crashed or killed processes left before this one started.
    const std::vector<TKeptFile>& Abandoned() const { return d_abandoned; }

    /// Records a change of the document and writes a recovery copy if one is due.
    /// @param document  path of the document; empty if it was never saved.
    void Record_Change(const QString& document);

    /// Writes pending changes to the recovery copy. Called when the window loses focus or a modal
    /// dialog opens.
    void Copy_Pending(const QString& document);

    /// Backs up the document that a save is about to replace, and opens it for writing.
    /// @param size           size of the version to be saved, in bytes.
    /// @param other_version  gets the path of the backup if another program has changed the
    ///                       document since it was opened or saved.
    bool Open_For_Saving(QFile* document, qint64 size, QString* other_version);

    /// Discards the recovery copy if the saved file is complete. Otherwise writes one, since the
    /// program counts the document as saved.
    /// @param size  expected size of the file in bytes.
    void After_Save(const QString& document, qint64 size);

    /// Writes a recovery copy, since the program counts the document as saved after a failed save.
    void After_Failed_Save(const QString& document) { Copy(document); }

    /// Discards the unsaved work, which the user agreed to lose.
    /// @param opened  path of the file that was opened instead; it is not deleted.
    void Discard(const QString& opened = QString());

    /// Ends the work on this document and leaves its recovery copy for the next start.
    void Release();

    /// Records the file that the document was read from. If it is an abandoned recovery copy, that
    /// copy is deleted once the document has been saved elsewhere.
    /// @param stamp  the file's stamp before it was read.
    void After_Open(const QString& path, const TFileStamp& stamp);

    /// Records that the abandoned recovery copy just opened is the unsaved work of its document.
    /// Saving that document or discarding the work deletes the copy.
    void After_Recovery(const TKeptFile& copy);

private:
    void Back_Up(QFile* document, qint64 size, QString* other_version);
    bool Is_Changed_Elsewhere(const QString& document) const;
    void Copy(const QString& document);
    void Reset();
    void Report_Once(const QString& problem);

    TBackup d_backup;
    TRecovery d_recovery;
    TWriteProject d_write_project;
    std::vector<TKeptFile> d_abandoned;
    TCopyPolicy d_policy;
    QElapsedTimer d_clock;
    QString d_opened_path;     ///< file that the document was read from or saved to
    QString d_recovered_path;  ///< recovery copy that is this document's unsaved work
    QString d_stamped_path;    ///< file that was last opened or saved
    TFileStamp d_stamp;        ///< of that file, after it was opened or saved
    QString d_incomplete_path; ///< target of the last save, if it was left incomplete
    bool d_is_pending = false; ///< there are changes that the recovery copy does not have
    bool d_has_reported = false;
};
