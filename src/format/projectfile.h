#pragma once

#include "src/model/pageimage.h"

#include <QByteArray>
#include <QString>

#include <vector>

class QIODevice;
class TSafeFile;

/// Puts a project file together, field after field, in the order of docs/file-formats.md.
///
/// The fields are kept as the pieces in which they came, so that a large document is not copied a
/// second time on its way to the disk.
class TProjectWriter
{
public:
    /// Begins with the magic number.
    TProjectWriter();

    /// Appends a 32-bit integer in host byte order.
    void Write_Integer(int value);
    /// Appends a length and that many Latin-1 bytes.
    void Write_Text(const QString& text);
    /// Appends a length and the bytes.
    void Write_Bytes(const QByteArray& bytes);
    /// Which bytes of an image are written.
    enum class TImageBytes {
        As_Png,      ///< PNG, encoded if need be: what a project file holds
        As_They_Came ///< of whatever format: costs nothing, and readers detect the format
    };

    /// Appends a length and a page's image; a length of 0 for a null image without bytes.
    void Write_Image(const TPageImage& image, TImageBytes which = TImageBytes::As_Png);

    /// Size of the whole file in bytes.
    qint64 Size() const;

    /// Writes everything to an open device; false, and no more is written, once it takes fewer
    /// bytes than it is given.
    bool Write_To(QIODevice* device) const;

    /// A file that one byte array cannot hold (2 GiB) could not be read back.
    static constexpr qint64 Maximum_Size = 0x7fffffff;

private:
    /// Bytes as they came, and the image that keeps them alive where they are an image's.
    struct TPiece
    {
        QByteArray bytes;
        TPageImage owner;
    };
    void Append(const QByteArray& bytes, const TPageImage& owner = TPageImage());

    std::vector<TPiece> d_pieces;
    qint64 d_size = 0;
};

/// Takes a project file apart, field after field.
///
/// Reading an integer past the end is stopped by an assertion. A length that points past the end is
/// clipped; a negative one makes the reader invalid, and from then on every field is empty or 0.
class TProjectReader
{
public:
    /// @param bytes  the whole file; kept alive by the images that are read from it.
    explicit TProjectReader(const QByteArray& bytes);

    /// Whether the bytes begin like a project file: at least 8 of them, and the magic number, which
    /// is then passed over.
    bool Read_Magic();
    int Read_Integer();
    /// A Latin-1 field, cut at its first zero byte.
    QString Read_Text();
    /// A field of raw bytes.
    QByteArray Read_Bytes();
    /// A page's image, not yet decoded; shares the file's bytes.
    TPageImage Read_Image();

    /// Number of bytes that have not been read; 0 past the end.
    qint64 Bytes_Left() const { return qMax<qint64>(0, d_bytes.size() - d_position); }

    /// False once a field had a negative length.
    bool Is_Valid() const { return d_valid; }

    /// First bytes of every project file, as an integer.
    static constexpr int Magic = 90210;

private:
    /// Where the content of a field stands in the file, clipped to what is there.
    struct TField
    {
        int offset;
        int length;
    };
    TField Take_Field();

    QByteArray d_bytes;
    /// Of the next field; past the end when the last one promised more than there is.
    qint64 d_position = 0;
    bool d_valid = true;
};

namespace ProjectFile {

/// Fills a file that is to take another one's place with a whole project and commits it; false
/// leaves the old file as it was.
bool Commit(const TProjectWriter& project, TSafeFile* target);

/// Whether a file is a project file in which every field is there to its last byte. Reads the
/// lengths alone, not what lies between them.
bool Is_Whole(const QString& path);

} // namespace ProjectFile
