#pragma once

#include "src/safety/keptfiles.h"

#include <QString>
#include <QStringList>

#include <optional>

class QFile;

/// Backups of saved documents: the content that the last save replaced, one backup per document.
/// Versions that other programs wrote have backups of their own.
class TBackup
{
public:
    /// Maximum size of all backups together, in bytes. The newest version of each document that
    /// another program wrote stays even beyond it.
    static constexpr qint64 Default_Limit = 2LL * 1024 * 1024 * 1024;

    /// How to back up a document.
    struct TOptions
    {
        bool force_to_disk = true; ///< wait until the backup is on the disk
        bool is_separate = false;  ///< under a new name, which later backups do not replace
        qint64 new_size = 0;       ///< size of the version to be saved, in bytes
        int extra_links = 0; ///< names of the document that are not in the backup folder, and need
                             ///< not become names of the new version
    };

    /// @param folder  folder of the backups; created on first use.
    /// @param limit   as Default_Limit. The oldest backups are deleted beyond it.
    explicit TBackup(const QString& folder, qint64 limit = Default_Limit);

    /// Backs up the current content of a document that a save is about to replace.
    ///
    /// If possible, the file itself becomes the backup, and an empty file with the same permissions
    /// replaces it, which is then open for writing. Otherwise the content is copied, cloned where
    /// the file system supports it, and the document is not opened.
    ///
    /// At any time there is a complete file at the path of the document or of the backup.
    /// @return  path of the backup; empty if there is nothing to back up: a missing, empty or
    ///          read-only document, or no regular file. No value on failure.
    std::optional<QString> Keep(QFile* document, const TOptions& options) const;

    /// Whether the disk has room for a version of the given size that overwrites a document.
    static bool Can_Overwrite(const QString& document, qint64 size);

    /// Path of a document's backup, whether or not it exists.
    QString Path_For(const QString& document) const;
    /// Paths of a document's separate backups, newest first.
    QStringList Separate_Paths_For(const QString& document) const;

    /// All backups, newest first. Their time is that of the backup, which is when the note was
    /// written: the file has the time of the version that it is.
    std::vector<TKeptFile> List() const;

    /// Deletes stale files of ended processes.
    void Clean_Up() const { d_folder.Clean_Up(); }

private:
    bool Move(QFile* document, const QString& copy, const TOptions& options) const;
    static bool Copy(const QString& document, const QString& path, bool force_to_disk);
    void Enforce_Limit(const QString& newest) const;

    TKeptFolder d_folder;
    qint64 d_limit;
};
