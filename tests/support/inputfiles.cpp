#include "support/inputfiles.h"

#include <QBuffer>
#include <QtEndian>

namespace {

template <typename TNumber>
QByteArray Little_Endian(TNumber number)
{
    QByteArray bytes(sizeof(TNumber), 0);
    qToLittleEndian(number, bytes.data());
    return bytes;
}

enum TTiffType : quint16 { Short = 3, Long = 4 };

/// One entry of a TIFF directory.
QByteArray Tiff_Entry(quint16 tag, TTiffType type, quint32 value, quint32 count = 1)
{
    return Little_Endian(tag) + Little_Endian(quint16(type)) + Little_Endian(count) +
           Little_Endian(value);
}

QByteArray Tiff_Directory(const QVector<QByteArray>& entries, quint32 next_directory)
{
    QByteArray bytes = Little_Endian(quint16(entries.size()));
    for (const QByteArray& entry : entries)
        bytes += entry;
    return bytes + Little_Endian(next_directory);
}

QByteArray Rgb_Bytes(const QImage& image)
{
    const QImage rgb = image.convertToFormat(QImage::Format_RGB888);
    QByteArray bytes;
    for (int y = 0; y < rgb.height(); ++y)
        bytes += QByteArray(reinterpret_cast<const char*>(rgb.constScanLine(y)), rgb.width() * 3);
    return bytes;
}

} // namespace

QByteArray Support::Exif_Jpeg(const QImage& image, int orientation)
{
    QByteArray jpeg;
    QBuffer buffer(&jpeg);
    buffer.open(QIODevice::WriteOnly);
    image.save(&buffer, "JPG", 95);
    const QByteArray exif = QByteArray("Exif\0\0II*\0\x08\0\0\0", 14) +
                            Tiff_Directory({Tiff_Entry(0x112, Short, quint32(orientation))}, 0);
    const QByteArray length(1, char(exif.size() + 2));
    // The segment follows the marker that begins the file.
    return jpeg.insert(2, QByteArray("\xff\xe1\0", 3) + length + exif);
}

QByteArray Support::Tiff(const QVector<QImage>& images, int orientation)
{
    constexpr quint32 entry_count = 10;
    constexpr quint32 directory_size = 2 + entry_count * 12 + 4;
    QByteArray bytes = QByteArray("II*\0\x08\0\0\0", 8);
    for (const QImage& image : images) {
        const QByteArray pixels = Rgb_Bytes(image);
        const quint32 depths = quint32(bytes.size()) + directory_size;
        const quint32 pixel_offset = depths + 3 * sizeof(quint16);
        // Offsets in a TIFF are even.
        const QByteArray padding(pixels.size() % 2, 0);
        const quint32 end = pixel_offset + quint32(pixels.size() + padding.size());
        const bool is_last = &image == &images.last();
        bytes += Tiff_Directory(
            {Tiff_Entry(256, Long, quint32(image.width())),
             Tiff_Entry(257, Long, quint32(image.height())), Tiff_Entry(258, Short, depths, 3),
             Tiff_Entry(259, Short, 1), Tiff_Entry(262, Short, 2),
             Tiff_Entry(273, Long, pixel_offset), Tiff_Entry(274, Short, quint32(orientation)),
             Tiff_Entry(277, Short, 3), Tiff_Entry(278, Long, quint32(image.height())),
             Tiff_Entry(279, Long, quint32(pixels.size()))},
            is_last ? 0 : end);
        for (int sample = 0; sample < 3; ++sample)
            bytes += Little_Endian(quint16(8));
        bytes += pixels + padding;
    }
    return bytes;
}

QByteArray Support::Gif(int width, int height)
{
    // Codes have 8 bits as long as the decoder's table is cleared often enough.
    constexpr char clear = '\x80';
    constexpr char end = '\x81';
    constexpr int run = 100;
    QByteArray codes;
    for (int pixel = 0; pixel < width * height; ++pixel) {
        if (pixel % run == 0)
            codes += clear;
        codes += '\0';
    }
    codes += end;
    const QByteArray size = Little_Endian(quint16(width)) + Little_Endian(quint16(height));
    QByteArray bytes = "GIF89a" + size + QByteArray("\xf6\0\0", 3) + QByteArray(3 * 128, 'x') +
                       ',' + QByteArray(4, '\0') + size + QByteArray("\0\7", 2);
    constexpr int block_size = 255;
    for (int offset = 0; offset < codes.size(); offset += block_size) {
        const QByteArray block = codes.mid(offset, block_size);
        bytes += static_cast<char>(block.size()) + block;
    }
    return bytes + '\0' + ';';
}

QByteArray Support::Pdf(const QVector<QByteArray>& boxes, const QByteArray& content)
{
    constexpr int first_page = 4;
    QVector<QByteArray> objects{"<</Type/Catalog/Pages 2 0 R>>", QByteArray(),
                                "<</Length " + QByteArray::number(content.size()) + ">>stream\n" +
                                    content + "\nendstream"};
    QByteArray kids;
    for (const QByteArray& box : boxes) {
        kids += QByteArray::number(first_page + objects.size() - 3) + " 0 R ";
        objects += "<</Type/Page/Parent 2 0 R/MediaBox[" + box + "]/Contents 3 0 R>>";
    }
    objects[1] =
        "<</Type/Pages/Kids[" + kids + "]/Count " + QByteArray::number(boxes.size()) + ">>";

    QByteArray bytes = "%PDF-1.4\n";
    QByteArray table;
    for (int index = 0; index < objects.size(); ++index) {
        table += QByteArray::number(bytes.size()).rightJustified(10, '0') + " 00000 n \n";
        bytes += QByteArray::number(index + 1) + " 0 obj" + objects[index] + "\nendobj\n";
    }
    const QByteArray size = QByteArray::number(objects.size() + 1);
    const QByteArray start = QByteArray::number(bytes.size());
    return bytes + "xref\n0 " + size + "\n0000000000 65535 f \n" + table + "trailer<</Size " +
           size + "/Root 1 0 R>>\nstartxref\n" + start + "\n%%EOF\n";
}
