#pragma once

#include "src/safety/keptfiles.h"

#include <QString>

class TProjectWriter;

/// Decides when a recovery copy of the unsaved work is due.
///
/// The first change after a save is copied at once. Later copies wait until Rest_Factor times the
/// duration of the last copy has passed, so that copying takes at most 2 % of the time.
class TCopyPolicy
{
public:
    static constexpr qint64 Rest_Factor = 50;

    /// @param now  in milliseconds, on a monotonic clock.
    bool Is_Due(qint64 now) const;
    /// Records begin and end of a copy, successful or not.
    void Record_Copy(qint64 begin, qint64 end);
    /// Makes the next copy due at once.
    void Reset() { d_has_copy = false; }

private:
    bool d_has_copy = false;
    qint64 d_end = 0;      ///< of the last copy
    qint64 d_duration = 0; ///< of the last copy
};

/// The recovery copy of this process: the unsaved work as an ordinary project file.
///
/// The process holds a lock on the copy's note while it runs. A copy whose note is not locked is
/// abandoned: its process crashed or was killed. Later processes list abandoned copies and never
/// change them.
class TRecovery
{
public:
    /// @param folder  folder of the copies; created on first use.
    explicit TRecovery(const QString& folder);
    /// Releases the lock. An existing copy stays for the next start.
    ~TRecovery();
    TRecovery(const TRecovery&) = delete;
    TRecovery& operator=(const TRecovery&) = delete;

    /// Whether the folder is writable; creates it if it is missing.
    bool Is_Possible() const { return d_folder.Prepare(); }

    /// Replaces this process's copy; on failure returns false and the previous copy stays.
    /// @param document  path of the document; empty if it was never saved.
    bool Write(const TProjectWriter& project, const QString& document);

    /// Deletes this process's copy.
    void Discard();

    /// Releases the lock and leaves the copy for the next start. The next copy gets a new name.
    void Release();

    /// Whether this process has a copy.
    bool Has_Copy() const { return d_has_copy; }
    /// Path of this process's copy; empty if there is none.
    QString Path() const;

    /// Copies of ended processes, newest first.
    std::vector<TKeptFile> Abandoned() const;

    /// Whether a path is directly in the folder of the copies.
    bool Contains(const QString& path) const { return d_folder.Contains(path); }

    /// Deletes stale files of ended processes; copies stay.
    void Clean_Up() const { d_folder.Clean_Up(); }

    /// Deletes an abandoned copy and its note. A no-op for every other path.
    void Remove_Abandoned(const QString& path) const;

private:
    bool Is_Abandoned(const TKeptFile& file) const;

    TKeptFolder d_folder;
    QString d_name;     ///< of this process's copy; empty before the first one
    TKeptNote d_note;   ///< of this process's copy; open while d_name is set
    QString d_document; ///< path in the note
    bool d_has_copy = false;
};
