#pragma once

#include "core/unfinishedfile.h"

#include <QByteArray>
#include <QString>

#include <functional>
#include <memory>
#include <optional>

class QTemporaryFile;

/// Replaces a file only when the new content is complete.
///
/// The new content goes to a temporary file in the target's folder, which is then renamed to the
/// target. So there is a complete file at all times: the old one or the new one. If the folder is
/// not writable but the target is, the target is written directly.
///
/// A target with several hard links or another owner is overwritten in place, since renaming would
/// replace it with a different file. If that fails or a signal ends the process, the complete
/// new file stays beside it as TARGET.new, and an error message contains its path.
///
/// The temporary file has mode 0600 and is locked. If the process is killed, the file stays, but
/// unlocked.
class TSafeFile
{
public:
    enum class TKind {
        Like_Target, ///< gets the permissions of the replaced file, or those of a new file
        Private      ///< keeps mode 0600; the target is never written directly
    };

    /// What the new content survives as soon as Commit returns.
    enum class TReach {
        System, ///< a crash of the program
        Disk    ///< a crash of the system or a power failure
    };

    /// @param path         the target; symbolic links are followed. Its folder must exist.
    /// @param extra_links  number of hard links to the target that need not stay the same file.
    explicit TSafeFile(const QString& path, TKind kind = TKind::Like_Target, int extra_links = 0);
    /// Removes the temporary file if it was not committed.
    ~TSafeFile();
    TSafeFile(const TSafeFile&) = delete;
    TSafeFile& operator=(const TSafeFile&) = delete;

    /// Path to write the new content to: an empty temporary file, or the target itself.
    QString Path_To_Write() const;

    /// Whether the new content goes to a temporary file beside the target.
    bool Is_Beside() const { return d_file != nullptr; }

    /// Copies the content of another file to the temporary file. Shares the blocks on disk where
    /// the file system can.
    bool Copy_From(const QString& source);

    /// Replaces the target: checks the new content, sets its permissions, syncs it and renames it.
    /// On failure, returns false and the target is unchanged, unless it was written directly
    /// or in place.
    /// @param is_complete  checks the file at the given path.
    bool Commit(const std::function<bool(const QString&)>& is_complete,
                TReach reach = TReach::Disk);

    /// Why the new content cannot be written, in the system's words; empty if it can. Call it after
    /// a failure, when the new content is of no use.
    QString Write_Problem() const;

    /// Whether a file has the given size and ends with the given bytes.
    /// @param size  in bytes; negative to accept any size.
    static bool Is_Complete(const QString& path, qint64 size, const QByteArray& end);

    /// Replaces the content of a file. On failure, returns false and the file is unchanged,
    /// unless it was written directly or in place.
    /// @param extra_links  as for the constructor.
    /// @param problem      receives the Write_Problem on failure; may be null.
    static bool Replace(const QString& path, const QByteArray& content, int extra_links = 0,
                        QString* problem = nullptr);

    /// From now on, Commit() fails instead of replacing an existing file.
    static void Keep_Existing_Files() { d_keeps_existing_files = true; }
    static bool Is_Keeping_Existing_Files() { return d_keeps_existing_files; }

    /// Writes a file's content, or a folder's entries, to the disk.
    static bool Sync(const QString& path);

    /// Template of the names of temporary files, for QTemporaryFile.
    static QString Unfinished_Template();

    /// Wildcard pattern of these names.
    static QString Unfinished_Pattern();

private:
    bool Write(const QByteArray& content);
    bool Replace_Target(TReach reach);
    bool Overwrite_Target(TReach reach);
    QString Make_Visible();

    static bool d_keeps_existing_files;

    QString d_target;
    std::optional<TUnfinishedFile> d_registration; ///< of the new file
    std::unique_ptr<QTemporaryFile> d_file;        ///< null when the target is written directly
    TKind d_kind;
    int d_extra_links;
};
