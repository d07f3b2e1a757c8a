#pragma once

#include "src/safety/keptfiles.h"

#include <QString>

/// The version before: what a project file held before a save replaced it, one copy a document.
class TBackup
{
public:
    /// How much all backups together may take.
    static constexpr qint64 Default_Limit = 2LL * 1024 * 1024 * 1024;

    /// @param folder  where the backups are kept; made when first needed.
    /// @param limit   in bytes; beyond it the oldest backups go.
    explicit TBackup(const QString& folder, qint64 limit = Default_Limit);

    /// Copies a document's present content into the folder, in the place of the copy before; cloned
    /// where the file system can. True also when there is nothing to keep: no such file, an empty
    /// one, or one that must not be written.
    /// @param force_to_disk  waits until the copy is on the disk.
    bool Keep(const QString& document, bool force_to_disk) const;

    /// Path of a document's backup, whether or not there is one.
    QString Path_For(const QString& document) const;

    /// All backups, newest first.
    std::vector<TKeptFile> List() const { return d_folder.List(); }

    /// Removes what processes that are no more have left unfinished.
    void Clean_Up() const { d_folder.Clean_Up(); }

private:
    void Bound(const QString& newest) const;

    TKeptFolder d_folder;
    qint64 d_limit;
};
