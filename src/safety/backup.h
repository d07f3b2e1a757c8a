#pragma once

#include "src/safety/keptfiles.h"

#include <QString>

/// Backups of saved documents: the content that the last save replaced, one backup per document.
class TBackup
{
public:
    /// Maximum size of all backups together, in bytes.
    static constexpr qint64 Default_Limit = 2LL * 1024 * 1024 * 1024;

    /// @param folder  folder of the backups; created on first use.
    /// @param limit   maximum size of all backups in bytes; the oldest are deleted beyond it.
    explicit TBackup(const QString& folder, qint64 limit = Default_Limit);

    /// Replaces the document's backup by a copy of its current content, cloned where the file
    /// system supports it. True also if there is nothing to back up: a missing, empty or read-only
    /// document, or no regular file.
    /// @param force_to_disk  waits until the backup is on the disk.
    bool Keep(const QString& document, bool force_to_disk) const;

    /// Path of a document's backup, whether or not it exists.
    QString Path_For(const QString& document) const;

    /// All backups, newest first.
    std::vector<TKeptFile> List() const { return d_folder.List(); }

    /// Deletes stale files of ended processes.
    void Clean_Up() const { d_folder.Clean_Up(); }

private:
    void Enforce_Limit(const QString& newest) const;

    TKeptFolder d_folder;
    qint64 d_limit;
};
