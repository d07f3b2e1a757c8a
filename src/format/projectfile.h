#pragma once

#include "core/bytesource.h"
#include "core/progressreport.h"
#include "src/format/filecontent.h"
#include "src/format/fileplaces.h"
#include "src/format/projectlayout.h"
#include "src/model/namedpage.h"

#include <QByteArray>
#include <QString>

#include <vector>

class QIODevice;
class TData;
class TImageEncoder;
class TSafeFile;
struct TAppearance;

/// Collects the fields of a project file in their order.
///
/// The fields are kept in pieces that share their bytes with the caller. Images that are in a file
/// are copied from file to file when they are written.
class TProjectWriter
{
public:
    /// Writes the magic number.
    TProjectWriter();

    /// Appends a 32-bit integer in host byte order.
    void Write_Integer(int value);
    /// Appends a length and that many Latin-1 bytes.
    void Write_Text(const QString& text);
    /// Appends a length and the bytes.
    void Write_Bytes(const QByteArray& bytes);
    /// Which bytes of an image are written.
    enum class TImageBytes {
        Png,   ///< PNG, encoded if necessary
        Source ///< the bytes that were imported, in any format
    };

    /// Appends a length and a page's image; the length is 0 for a null image without bytes.
    void Write_Image(const TPageImage& image, TImageBytes which = TImageBytes::Png);

    /// Appends the three fields of a page and records their places.
    /// @param page   whose image is written, and whose revision is recorded.
    /// @param items  the document of its labels.
    void Write_Page(const QString& name, const TPageItem& page, TImageBytes which,
                    const QByteArray& items);

    /// Size of the whole file in bytes.
    qint64 Size() const;

    /// Where the file has the pages of Write_Page().
    const TFilePlaces& Places() const { return d_places; }

    /// Writes everything to an open device. Stops and returns false after a short write.
    bool Write_To(QIODevice* device) const;
    /// The same for what was not flushed before, and drops it.
    bool Flush_To(QIODevice* device);

private:
    void Append(const TByteSource& bytes);
    TFilePart Last_Field() const;

    std::vector<TByteSource> d_pieces;
    TFilePlaces d_places;
    qint64 d_size = 0;
};

/// Reads the fields of a project file in their order.
///
/// Reading an integer past the end fails an assertion. A length that points past the end is
/// clipped. A negative length makes the reader invalid; every later field is then empty or 0. So
/// does another program that changes the file meanwhile.
class TProjectReader
{
public:
    /// @param file  the whole file; images that are read from it keep it alive.
    explicit TProjectReader(const TByteSource& file);

    /// Reads the magic number; false when it is another number or the file is too short.
    bool Read_Magic();
    int Read_Integer();
    /// Reads a Latin-1 field up to its first zero byte.
    QString Read_Text();
    /// Reads a field of raw bytes.
    QByteArray Read_Bytes();
    /// Reads a page's image without decoding it. It shares the file's bytes, or reads them later.
    TPageImage Read_Image();

    /// Number of bytes that have not been read; 0 past the end.
    qint64 Bytes_Left() const { return qMax<qint64>(0, d_file.Size() - d_position); }

    /// False after a field with a negative length, or if the file has changed.
    bool Is_Valid() const { return d_valid; }

    /// Where the file has the content of the last field, clipped to the file's end.
    TFilePart Last_Field() const { return d_last_field; }

private:
    TFilePart Read_Field();
    QByteArray Read(const TFilePart& part);

    TByteSource d_file;
    QByteArray d_window; ///< bytes of the file that were read last
    qint64 d_window_offset = 0;
    TFilePart d_last_field{0, 0};
    /// Of the next field; past the end when the last length pointed there.
    qint64 d_position = 0;
    bool d_valid = true;
};

namespace ProjectFile {

/// Whether a file would lose characters of the header lines. Those that Latin-1 cannot represent
/// are stored with the first page, so a document without pages loses them.
bool Loses_Headers(const TAppearance& appearance, int page_count);

/// Writes a document. Images become PNG; a text that XML cannot represent is a fault.
/// @param pages    the pages in the order in which they are written.
/// @param report   is called before each page.
/// @param encoder  encodes the images; null for one that is only used here.
/// @return why the labels of a page could not be written; empty on success.
QString Write(const TAppearance& appearance, const std::vector<TNamedPage>& pages,
              const TData& data, const TProgressReport& report, TProjectWriter* writer,
              TImageEncoder* encoder = nullptr);

/// Reads a project file up to its first fault.
///
/// A file that ends within an integer fails an assertion; ProjectSurvey::Survey accepts any bytes.
/// @param file    the whole file; the images keep it alive.
/// @param report  is called before each page.
TFileContent Read(const TByteSource& file, const TProgressReport& report = nullptr);

/// Writes a project to the temporary file of `target` and commits it. On failure, the old file is
/// unchanged.
bool Commit(const TProjectWriter& project, TSafeFile* target);

/// Whether a file is a complete project file. Reads only the lengths of its fields.
bool Is_Whole(const QString& path);

} // namespace ProjectFile
