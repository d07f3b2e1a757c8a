#pragma once

#include <QByteArray>
#include <QDateTime>
#include <QString>

#include <vector>

/// One safety copy: a project file that the program keeps for the user beside the settings.
struct TKeptFile
{
    QString path;     ///< of the copy, which Open takes like any project file
    QString document; ///< path of the document it belongs to; empty for one never saved
    QDateTime time;   ///< when it was written
    qint64 size = 0;  ///< in bytes
};

/// A note beside a safety copy, open for writing and locked by whoever holds it.
///
/// The system lets go of the lock when the process ends, however it ends, so that a lock tells
/// better than a process number whether somebody is still at work.
class TKeptNote
{
public:
    TKeptNote() = default;
    ~TKeptNote() { Close(); }
    TKeptNote(const TKeptNote&) = delete;
    TKeptNote& operator=(const TKeptNote&) = delete;

    /// What Open does about a note that is there already.
    enum class TExisting { Take, Refuse };

    /// Opens or makes a note and locks it; false when that is refused or somebody else holds it.
    bool Open(const QString& path, TExisting existing);
    /// Replaces what the note holds: the path of the copy's document.
    bool Write(const QString& document) const;
    void Close();

private:
    int d_descriptor = -1;
};

/// A folder of safety copies. Beside each copy NAME.quillet stands a note NAME.note that holds the
/// path of its document. Folder and files are for their owner alone (modes 0700 and 0600).
class TKeptFolder
{
public:
    /// @param path  the folder; made when it is first needed.
    explicit TKeptFolder(const QString& path);

    /// Makes the folder if it is missing; false when nothing can be written there, and also when
    /// the folder or the one around it is a link: nobody knows who can read what is kept behind it.
    bool Prepare() const;

    /// Path of a copy of the given name, and of its note.
    QString Copy_Path(const QString& name) const;
    QString Note_Path(const QString& name) const;

    /// Removes a copy and its note.
    void Remove(const QString& name) const;

    /// Removes what processes that are no more have left unfinished: files that were being written,
    /// and notes without a copy. What somebody may still be working on stays.
    void Clean_Up() const;

    /// All copies, newest first.
    std::vector<TKeptFile> List() const;

    /// Name of a copy by its path: the file name without its suffix.
    static QString Name_Of(const QString& copy_path);

    /// Whether a path lies in this folder.
    bool Contains(const QString& path) const;

    /// Whether nobody holds a lock on a file; also when there is no such file.
    static bool Is_Free(const QString& path);

private:
    QString d_path;
};
