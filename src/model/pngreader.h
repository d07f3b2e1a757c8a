#pragma once

#include <QByteArray>
#include <QSize>

#include <png.h>

class QImage;

/// Reads a PNG image row by row, with memory for one row.
///
/// In contrast to Qt's reader, it returns the rows before a defect, counts them, and prints no
/// messages.
class TPngReader
{
public:
    /// @param bytes  must outlive this object.
    explicit TPngReader(const QByteArray& bytes);
    ~TPngReader();
    TPngReader(const TPngReader&) = delete;
    TPngReader& operator=(const TPngReader&) = delete;

    /// Whether the bytes begin like a PNG image.
    static bool Is_Png(const QByteArray& bytes);

    /// Reads everything before the pixels. Returns false if that is not possible.
    bool Read_Header();
    /// Size in pixels, after Read_Header().
    QSize Size() const { return d_size; }

    /// Reads all rows and the end of the file. Returns false at the first defect.
    /// @param pixels  receives the rows; null to discard them. Of the right size, in
    ///                QImage::Format_RGBA8888.
    bool Read_Rows(QImage* pixels);
    /// Number of complete rows from the top, after Read_Rows().
    int Complete_Rows() const { return d_complete_rows; }

private:
    static void Read(png_structp png, png_bytep data, png_size_t length);
    void Read_Pass(int pass, int pass_count, QImage* pixels);

    const QByteArray& d_bytes;
    int d_position = 0;
    bool d_is_at_end = false; ///< after the rows
    png_structp d_png = nullptr;
    png_infop d_info = nullptr;
    QSize d_size{0, 0};
    int d_complete_rows = 0;
};
