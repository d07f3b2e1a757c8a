#pragma once

#include "src/safety/backup.h"
#include "src/safety/recovery.h"

#include <QElapsedTimer>
#include <QString>

#include <functional>

class TProjectWriter;

/// Keeps the user's work whatever happens: the version before a save, and the work since.
///
/// It stands beside the file commands and changes nothing of what they do. It has no timer: it acts
/// when it is told of a change, of a pause in the work, or of a save. When the settings folder
/// takes no files the program works on without it, and says so once on the standard error output.
class TSafetyNet
{
public:
    /// Puts the whole document into a writer, with the images as the bytes in which they came.
    using TWriteProject = std::function<void(TProjectWriter*)>;

    /// Where the copies are kept, by the folder of the settings.
    static QString Backup_Folder(const QString& settings_folder);
    static QString Recovery_Folder(const QString& settings_folder);

    /// @param settings_folder  holds both folders.
    /// @param write_project    is called when a copy is due.
    TSafetyNet(const QString& settings_folder, TWriteProject write_project);

    /// Copies of runs that ended badly, as they were found when the program started.
    const std::vector<TKeptFile>& Found() const { return d_found; }

    /// A command has changed the document: copies it when that is due.
    /// @param document  path of the document; empty for one that was never saved.
    void Note_Change(const QString& document);

    /// The user turns away, or a modal command begins: copies what is not in the copy yet.
    void Keep_Now(const QString& document);

    /// A project file is about to be replaced: keeps its present content.
    void Before_Save(const QString& document);

    /// A project file has been written. When it is whole the copy of the work is no longer needed;
    /// otherwise one is written, since the program counts the document as saved.
    /// @param size  number of bytes that the file should have.
    void After_Save(const QString& document, qint64 size);

    /// A save was refused although the document counts as saved afterwards: copies the work.
    void Keep_Unsaved(const QString& document) { Copy(document); }

    /// The user has given the unsaved work up.
    void Give_Up();

    /// Another document takes the place of this one without the user having been asked: a copy of
    /// the work stays, for a later run to find.
    void Set_Aside();

    /// A whole project file has been opened. If it is a copy of a run that ended badly, that copy
    /// goes away once the document has been saved elsewhere.
    void Note_Opened(const QString& path) { d_opened_path = path; }

private:
    void Copy(const QString& document);
    void Forget_Work();
    void Complain(const QString& what);

    TBackup d_backup;
    TRecovery d_recovery;
    TWriteProject d_write_project;
    std::vector<TKeptFile> d_found;
    TCopyPolicy d_policy;
    QElapsedTimer d_clock;
    QString d_opened_path;   ///< file that the present document came from
    QString d_short_path;    ///< file that the last save left incomplete
    bool d_is_dirty = false; ///< there are changes that are not in the copy
    bool d_has_complained = false;
};
