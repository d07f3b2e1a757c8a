#pragma once

#include <QByteArray>

#include <memory>

class QIODevice;
class QString;
class TOpenFile;

/// Bytes in memory, or in a part of a file. Copies are cheap and share the bytes.
///
/// A part of a file is read when it is needed. When another program has changed the file, its bytes
/// are lost; see TOpenFile. All offsets and sizes are in bytes; parts are clipped to the source.
class TByteSource
{
public:
    /// No bytes.
    TByteSource() = default;

    /// Bytes in memory, which are shared.
    TByteSource(const QByteArray& bytes);

    /// A part of a file.
    TByteSource(std::shared_ptr<const TOpenFile> file, qint64 offset, qint64 length);

    /// Smaller files are read into memory, where no other program can change them. In bytes. Tests
    /// change it to work on small files.
    static qint64 Smallest_Open_File;

    /// The content of a regular file. Of a large one, it is read on demand.
    /// @return no bytes if it is not a regular file, or not readable.
    static TByteSource Of_File(const QString& path);

    qint64 Size() const { return d_size; }
    bool Is_Empty() const { return d_size == 0; }

    /// Whether the bytes are in memory.
    bool Is_In_Memory() const { return !d_file; }

    /// Whether another program has changed the file that contains the bytes.
    bool Is_Lost() const;

    /// A part of these bytes, which are shared.
    TByteSource Part(qint64 offset, qint64 length) const;

    /// The bytes, in memory. Empty if they are lost or more than a QByteArray can hold. Bytes in
    /// memory are not copied and must not outlive this source.
    QByteArray Read() const;

    /// A copy of a part of the bytes.
    QByteArray Read(qint64 offset, qint64 length) const;

    bool Begins_With(const QByteArray& bytes) const;

    /// Offset of the first occurrence of `what` that does not begin before `from`; -1 if there is
    /// none.
    qint64 Index_Of(const QByteArray& what, qint64 from = 0) const;

    /// Offset of the last occurrence of `what`; -1 if there is none.
    qint64 Last_Index_Of(const QByteArray& what) const;

    /// Writes the bytes to a device that is open for writing. Notifies TWorkWatch.
    /// @return false if not all of them were written.
    bool Write_To(QIODevice* device) const;

private:
    std::shared_ptr<const TOpenFile> d_file; ///< null for bytes in memory
    QByteArray d_bytes;                      ///< in memory
    qint64 d_offset = 0;                     ///< in the file, or in the array
    qint64 d_size = 0;
};
