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

/// A folder of safety copies. Beside each copy NAME.quillet stands a note NAME.note that holds the
/// path of its document. Folder and files are for their owner alone (modes 0700 and 0600).
class TKeptFolder
{
public:
    /// @param path  the folder; made when it is first needed.
    explicit TKeptFolder(const QString& path);

    /// Makes the folder if it is missing; false when nothing can be written there.
    bool Prepare() const;

    /// Path of a copy of the given name, and of its note.
    QString Copy_Path(const QString& name) const;
    QString Note_Path(const QString& name) const;

    /// Writes the note of a copy.
    bool Write_Note(const QString& name, const QString& document) const;

    /// Removes a copy and its note.
    void Remove(const QString& name) const;

    /// All copies, newest first.
    std::vector<TKeptFile> List() const;

    /// Name of a copy by its path: the file name without its suffix.
    static QString Name_Of(const QString& copy_path);

    /// Whether a path lies in this folder.
    bool Contains(const QString& path) const;

private:
    QString d_path;
};
