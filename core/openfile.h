#pragma once

#include "core/filestamp.h"

#include <QByteArray>
#include <QString>

#include <memory>
#include <optional>

class QFileDevice;

/// A file whose bytes are read when they are needed.
///
/// The content stays readable when the file is renamed, replaced by another one or deleted. But
/// another program can overwrite or truncate it. From then on, nothing is read from it: the bytes
/// would be those of another document. Copy_Before_Overwriting() protects files from this program.
///
/// All sizes and offsets are in bytes. GUI thread only.
class TOpenFile
{
public:
    /// Opens a regular file; null if it is something else, or not readable.
    static std::shared_ptr<TOpenFile> Open(const QString& path);

    /// Creates an empty file without a name, which vanishes with this object; null on failure. It
    /// is in the folder of the environment variable TMPDIR or in /var/tmp, not in /tmp: that is
    /// often a part of the memory.
    static std::shared_ptr<TOpenFile> Create_Unnamed();

    ~TOpenFile();
    TOpenFile(const TOpenFile&) = delete;
    TOpenFile& operator=(const TOpenFile&) = delete;

    /// Size of the file when it was opened; 0 for a file without a name.
    qint64 Size() const { return d_stamp ? d_stamp->size : 0; }

    /// Whether another program has changed the content since the file was opened.
    bool Is_Changed() const;

    /// Limit of Read(), in bytes. QFile::readAll() returns nothing for a file that is a few bytes
    /// larger.
    static constexpr qint64 Largest_Read = 0x7fffff00;

    /// Reads a part. Notifies TWorkWatch.
    /// @return its bytes; empty after a change or an error, or beyond Largest_Read.
    QByteArray Read(qint64 offset, qint64 length) const;

    /// Appends a part to a file that is open for writing. The files share the blocks on the disk
    /// where the file system can. Notifies TWorkWatch.
    /// @return false after a change or an error; a piece of the part may be written.
    bool Copy_To(QFileDevice* file, qint64 offset, qint64 length) const;

    /// Writes bytes at an offset of a file without a name.
    bool Write(qint64 offset, const QByteArray& bytes);

    /// Frees the disk space of a part of a file without a name. Its bytes become zeros.
    void Discard(qint64 offset, qint64 length);

    /// Copies the content of every open file that a path refers to into a file without a name, and
    /// uses that from now on. Call it before a file is overwritten in place.
    /// @return false on failure.
    static bool Copy_Before_Overwriting(const QString& path);

private:
    explicit TOpenFile(int descriptor);
    bool Copy_Into_Unnamed();
    bool Copy_Blocks(QFileDevice* file, qint64 offset, qint64 length) const;

    int d_descriptor;
    std::optional<TFileStamp> d_stamp; ///< when it was opened; none for a file without a name
};
