#pragma once

#include "src/safety/workdocument.h"

#include <QByteArray>
#include <QDateTime>
#include <QList>
#include <QString>

#include <optional>
#include <vector>

struct stat;

/// A safety copy, a project file in a folder beside the settings, or a work log that was not
/// converted to one.
struct TKeptFile
{
    QString path;           ///< of the copy, which File > Open accepts, or of the log
    QString document;       ///< path of the document it belongs to; empty if it was never saved
    QDateTime time;         ///< of the last change
    qint64 size = 0;        ///< in bytes
    int missing_images = 0; ///< pages whose image could not be recovered
    TFileStamp document_stamp = {}; ///< as in TWorkDocument
    bool is_reported = false;       ///< the user was shown why the log cannot be converted
    QString problem = {};           ///< why it cannot be converted; empty for copies

    /// Whether the document exists and is another version than the one that the work continues.
    bool Is_Document_Changed() const;
};

/// The open and locked note of a safety copy or work log. The note holds the path of the document,
/// the number of missing images if the log stays beside its copy, the stamp of the document, and
/// whether the user was shown why the log cannot be converted.
///
/// The kernel releases the lock when the process ends, even after SIGKILL. Unlike a process id, a
/// lock is never stale.
class TKeptNote
{
public:
    TKeptNote() = default;
    ~TKeptNote() { Close(); }
    TKeptNote(const TKeptNote&) = delete;
    TKeptNote& operator=(const TKeptNote&) = delete;

    /// What Open() does with an existing note.
    enum class TExisting { Reuse, Refuse };

    /// Opens or creates a note and locks it; false on failure and while another process holds the
    /// lock. Symbolic links are refused.
    bool Open(const QString& path, TExisting existing);
    /// Replaces the content of the note.
    /// @param missing_images  none unless the log stays beside its copy.
    bool Write(const TWorkDocument& document, std::optional<int> missing_images = std::nullopt,
               bool is_reported = false) const;
    /// Releases the lock.
    void Close();

private:
    int d_descriptor = -1;
};

/// A folder of safety copies and work logs. Each copy NAME.quillet and each log NAME.log has a note
/// NAME.note. Folder and files are accessible to their owner only (modes 0700 and 0600).
class TKeptFolder
{
public:
    /// @param path  the folder; created on first use.
    explicit TKeptFolder(const QString& path);

    /// Creates the folder if it is missing. False if it is not writable, or if it or its parent
    /// is a symbolic link: the target may be readable by others.
    bool Prepare() const;

    /// Paths of the copy with the given name, its note, its work log, and the protected base file
    /// of the log.
    QString Copy_Path(const QString& name) const;
    QString Note_Path(const QString& name) const;
    QString Log_Path(const QString& name) const;
    QString Base_Path(const QString& name) const;

    /// Opens a new note and returns its unused name: the prefix and the local time. Empty on
    /// failure.
    QString Claim_Name(const QString& prefix, TKeptNote* note) const;

    /// Template for QTemporaryFile, and an unused path, of a file that Clean_Up() deletes after a
    /// crash.
    QString Unfinished_Template() const;
    QString Unfinished_Path() const;

    /// Number of files in the folder that are hard links to a file.
    int Links_To(const struct stat& file) const;
    int Links_To(const QString& path) const;

    /// Deletes a copy, its work log and its note.
    void Remove(const QString& name) const;
    /// Deletes a work log with the files that belong to it.
    void Remove_Log(const QString& name) const;

    /// Deletes stale files of ended processes: unfinished files, and notes and parts of a log
    /// without a copy or log. Locked and recent files stay.
    void Clean_Up() const;

    /// All copies, newest first.
    std::vector<TKeptFile> List() const;
    /// The copies and the work logs of ended processes, newest first, without the logs that stay
    /// beside their copies.
    std::vector<TKeptFile> Abandoned_Copies() const { return Abandoned(List()); }
    std::vector<TKeptFile> Abandoned_Logs() const;
    /// Whether there is a work log, and not a copy beside which it stays.
    bool Has_Log_To_Convert(const QString& name) const;
    /// Deletes an abandoned copy, its work log and its note. Does nothing for other paths.
    void Remove_Abandoned(const QString& path) const;

    /// Name of a copy or log: its file name without the suffix.
    static QString Name_Of(const QString& path);

    /// Whether a path is directly in this folder.
    bool Contains(const QString& path) const;

    /// Whether no process holds a lock on a file; true if the file does not exist.
    static bool Is_Free(const QString& path);

private:
    QString Path(const QString& name, const char* suffix) const;
    std::vector<TKeptFile> List(const char* suffix) const;
    QList<QByteArray> Note_Fields(const QString& name) const;
    std::vector<TKeptFile> Abandoned(std::vector<TKeptFile> files) const;

    QString d_path;
};
