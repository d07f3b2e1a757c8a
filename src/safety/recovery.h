#pragma once

#include "src/safety/keptfiles.h"

#include <QString>

class TProjectWriter;

/// Says when a further copy of the unsaved work is worth its time.
///
/// The first change after a save is copied at once. After that a copy may begin when so much time
/// has passed since the last one ended that copying takes at most a fiftieth of the user's time.
class TCopyPolicy
{
public:
    /// Time between two copies, as a multiple of what the last one took: 2 % of the time is
    /// copying.
    static constexpr qint64 Rest_Factor = 50;

    /// @param now  in milliseconds on a clock that never goes back.
    bool Is_Due(qint64 now) const;
    /// Tells when a copy, successful or not, began and ended.
    void Note_Copy(qint64 begin, qint64 end);
    /// The work has been saved or given up: the next change is the first one again.
    void Reset() { d_has_copy = false; }

private:
    bool d_has_copy = false;
    qint64 d_end = 0;      ///< of the last copy
    qint64 d_duration = 0; ///< of the last copy
};

/// The work since the last save: one recovery copy a run of the program, an ordinary project file.
///
/// The run holds a lock on the copy's note for as long as it lives. A copy whose note nobody holds
/// belongs to a run that ended badly; it is found by later runs and never changed by them.
class TRecovery
{
public:
    /// @param folder  where the copies are kept; made when first needed.
    explicit TRecovery(const QString& folder);
    /// Lets go of the note; a copy that is still there stays for the next run to find.
    ~TRecovery();
    TRecovery(const TRecovery&) = delete;
    TRecovery& operator=(const TRecovery&) = delete;

    /// Whether the folder can be written to; makes it if it is missing.
    bool Is_Possible() const { return d_folder.Prepare(); }

    /// Replaces this run's copy; false leaves the copy before.
    /// @param document  path of the document; empty for one that was never saved.
    bool Write(const TProjectWriter& project, const QString& document);

    /// Removes this run's copy: the work has been saved or given up.
    void Discard();

    /// Lets go of this run's copy, which stays; the next one gets a new name.
    void Release();

    /// Whether this run has a copy.
    bool Has_Copy() const { return d_has_copy; }
    /// Path of this run's copy; empty when it has none.
    QString Path() const;

    /// Copies of runs that are no more, newest first.
    std::vector<TKeptFile> Abandoned() const;

    /// Removes what processes that are no more have left unfinished.
    void Clean_Up() const { d_folder.Clean_Up(); }

    /// Removes the copy of a run that is no more, whose work the user has opened and saved.
    /// Paths elsewhere are left alone.
    void Remove_Abandoned(const QString& path) const;

private:
    bool Claim_Name();
    bool Is_Abandoned(const TKeptFile& file) const;

    TKeptFolder d_folder;
    QString d_name;     ///< of this run's copy; empty while it has none
    TKeptNote d_note;   ///< of this run's copy, locked while it has a name
    QString d_document; ///< what the note holds
    bool d_has_copy = false;
};
