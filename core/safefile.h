#pragma once

#include <QByteArray>
#include <QString>

#include <functional>
#include <memory>

class QTemporaryFile;

/// A file that takes the place of another one only when it is complete.
///
/// The new content is written beside the target and renamed over it at the end, so that there is a
/// whole file at every moment: the old one or the new one. Where the folder takes no new file but
/// the target itself can be written, the target is written directly, since there is no better way.
///
/// While it is being written the new file is for its owner alone (mode 0600) and locked; a kill
/// leaves it behind without the lock.
class TSafeFile
{
public:
    enum class TKind {
        Like_Target, ///< gets the permissions of the file that it replaces, or those of a new one
        Private      ///< stays for its owner alone, and is never written directly
    };

    /// How far a new file has to have come before it replaces the old one.
    enum class TReach {
        System, ///< a crash of the program does it no harm
        Disk    ///< nor one of the machine
    };

    /// @param path  the target; a symbolic link is followed. Missing folders are not made.
    explicit TSafeFile(const QString& path, TKind kind = TKind::Like_Target);
    /// Removes what was not committed.
    ~TSafeFile();
    TSafeFile(const TSafeFile&) = delete;
    TSafeFile& operator=(const TSafeFile&) = delete;

    /// Path to write the new content to. It exists already and is empty, unless it is the target.
    QString Path_To_Write() const;

    /// Whether the new content is written beside the target.
    bool Is_Beside() const { return d_file != nullptr; }

    /// Fills the new file with another file's content, which the file system clones if it can.
    bool Copy_From(const QString& source);

    /// Puts the new content in the target's place: asks whether it is complete, sees to its
    /// permissions, forces it to the disk and renames it. False leaves the target as it was (unless
    /// it was written directly).
    /// @param is_complete  judges the file at the given path.
    bool Commit(const std::function<bool(const QString&)>& is_complete,
                TReach reach = TReach::Disk);

    /// Whether the file is the wanted number of bytes long and ends with the given bytes.
    /// @param size  in bytes; negative when any will do.
    static bool Is_Complete(const QString& path, qint64 size, const QByteArray& end);

    /// Replaces a file by bytes; false leaves it as it was.
    static bool Replace(const QString& path, const QByteArray& content);

    /// Forces a file's content, or a folder's entries, to the disk.
    static bool Sync(const QString& path);

    /// Wild-card pattern of the names that files have while they are being written.
    static QString Unfinished_Pattern();

private:
    bool Take_Place_Of_Target();

    QString d_target;
    std::unique_ptr<QTemporaryFile> d_file; ///< null when the target is written directly
    TKind d_kind;
};
