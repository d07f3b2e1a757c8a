#include "src/model/imagecheck.h"

#include "core/errorcapture.h"
#include "src/model/pngreader.h"

#include <QBuffer>
#include <QCoreApplication>
#include <QImageReader>
#include <QtEndian>

#include <algorithm>

namespace {

QString Tr(const char* source)
{
    return QCoreApplication::translate("ImageCheck", source);
}

/// Hides the messages of decoders. Notes whether there was a warning of Qt, which decodes a damaged
/// JPEG image without an error.
class TWarningWatch
{
public:
    TWarningWatch()
        : d_outer(qInstallMessageHandler(
              [](QtMsgType, const QMessageLogContext&, const QString&) { d_has_warned = true; }))
    {
        d_has_warned = false;
    }
    ~TWarningWatch() { qInstallMessageHandler(d_outer); }
    Q_DISABLE_COPY(TWarningWatch)

    static bool Has_Warned() { return d_has_warned; }
    /// What libraries printed.
    QByteArray Library_Messages() const { return d_library_messages.Text(); }

private:
    static bool d_has_warned;
    TErrorCapture d_library_messages;
    QtMessageHandler d_outer;
};

bool TWarningWatch::d_has_warned = false;

/// Whether a BMP image has fewer bytes than its pixels need. Qt decodes the available rows.
bool Is_Cut_Bmp(const QByteArray& bytes)
{
    constexpr int header_size = 34;
    if (bytes.size() < header_size)
        return true;
    const auto* const header = bytes.constData();
    const bool is_compressed = qFromLittleEndian<quint32>(header + 30) % 3 != 0;
    const qint64 offset = qFromLittleEndian<quint32>(header + 10);
    const qint64 width = qFromLittleEndian<qint32>(header + 18);
    const qint64 height = qAbs(qint64{qFromLittleEndian<qint32>(header + 22)});
    const qint64 bits = qFromLittleEndian<quint16>(header + 28);
    constexpr int row_unit = 32; // bits
    const qint64 row_size = (width * bits + row_unit - 1) / row_unit * 4;
    return !is_compressed && bytes.size() < offset + row_size * height;
}

/// The offset after a sequence of data blocks in a GIF image.
int End_Of_Gif_Data(const QByteArray& bytes, int offset)
{
    while (offset < bytes.size() && bytes.at(offset) != 0)
        offset += 1 + static_cast<quint8>(bytes.at(offset));
    return offset + 1;
}

/// Whether a GIF image ends before the data of its first picture. Qt decodes the available rows.
bool Is_Cut_Gif(const QByteArray& bytes)
{
    constexpr int screen_flags = 10;
    constexpr int screen_size = 13;
    constexpr int picture_flags = 9;
    constexpr int picture_size = 10;
    constexpr int extension_size = 2;
    const auto color_table_size = [&bytes](int flags_offset) {
        const int flags =
            flags_offset < bytes.size() ? static_cast<quint8>(bytes.at(flags_offset)) : 0;
        return (flags & 0x80) != 0 ? 3 * (2 << (flags & 7)) : 0;
    };
    int offset = screen_size + color_table_size(screen_flags);
    while (offset < bytes.size() && bytes.at(offset) == '!')
        offset = End_Of_Gif_Data(bytes, offset + extension_size);
    // One byte more: the size of the codes.
    const int data = offset + picture_size + color_table_size(offset + picture_flags) + 1;
    return End_Of_Gif_Data(bytes, data) > bytes.size();
}

/// Whether Qt decodes an image of another format than PNG without noticing that it is damaged.
bool Has_Hidden_Damage(const QByteArray& format, const QByteArray& bytes)
{
    if (format == "bmp")
        return Is_Cut_Bmp(bytes);
    if (format == "gif")
        return Is_Cut_Gif(bytes);
    if (format == "xbm")
        return !bytes.contains('}');
    return (format == "jpeg" || format == "jpg") && TWarningWatch::Has_Warned();
}

QString Damage()
{
    return Tr("the image is damaged");
}

QString Decoding_Fault()
{
    return Tr("the image cannot be decoded");
}

QString Png_Fault(const QByteArray& bytes)
{
    TPngReader reader(bytes);
    if (!reader.Read_Header() || TPageImage::Is_Too_Large(reader.Size()))
        return Decoding_Fault();
    if (reader.Read_Rows(nullptr))
        return QString();
    const int rows = reader.Complete_Rows();
    const int height = reader.Size().height();
    return rows == height
               ? Tr("the end of the image is missing or damaged")
               : Tr("the image is damaged from row %1 of %2 on").arg(rows + 1).arg(height);
}

/// The size that the header of an image declares; (0, 0) without one, or if it is too large.
QSize Declared_Size(const QByteArray& bytes)
{
    QSize size;
    if (TPngReader::Is_Png(bytes)) {
        TPngReader reader(bytes);
        if (reader.Read_Header())
            size = reader.Size();
    } else {
        const TWarningWatch watch;
        QBuffer buffer;
        buffer.setData(bytes);
        size = QImageReader(&buffer).size();
    }
    return size.isEmpty() || TPageImage::Is_Too_Large(size) ? QSize(0, 0) : size;
}

} // namespace

QSize ImageCheck::Size(const TByteSource& image)
{
    // Enough for nearly all images.
    constexpr qint64 usual_header = 64 * 1024; // bytes
    const QSize size = Declared_Size(image.Read(0, usual_header));
    return size.isEmpty() && image.Size() > usual_header ? Declared_Size(image.Read()) : size;
}

QString ImageCheck::Fault(const QByteArray& bytes)
{
    if (TPngReader::Is_Png(bytes))
        return Png_Fault(bytes);
    const TWarningWatch watch;
    // Checks the size first.
    if (TPageImage::From_Bytes(bytes).isNull())
        return Decoding_Fault();
    QBuffer buffer;
    buffer.setData(bytes);
    QImageReader reader(&buffer);
    const QByteArray format = reader.format();
    QImage image;
    if (!reader.read(&image) || Has_Hidden_Damage(format, bytes))
        return Damage();
    return format == "tiff" ? Tiff_Fault(watch.Library_Messages()) : QString();
}

QString ImageCheck::Tiff_Fault(const QByteArray& messages)
{
    // Warnings are about unusual tags, except those about the data of JPEG pictures.
    const auto names_damage = [](const QByteArray& line) {
        return !line.isEmpty() && (line.startsWith("JPEGLib") || !line.contains(": Warning, "));
    };
    const QList<QByteArray> lines = messages.split('\n');
    return std::any_of(lines.cbegin(), lines.cend(), names_damage) ? Damage() : QString();
}

ImageCheck::TRest ImageCheck::Rest(const QByteArray& bytes)
{
    if (!TPngReader::Is_Png(bytes)) {
        const TWarningWatch watch;
        const TPageImage image = TPageImage::From_Bytes(bytes);
        return {image.isNull() ? TPageImage() : image};
    }
    TPngReader reader(bytes);
    if (!reader.Read_Header() || TPageImage::Is_Too_Large(reader.Size()))
        return {};
    QImage pixels(reader.Size(), QImage::Format_RGBA8888);
    if (pixels.isNull())
        return {};
    pixels.fill(Qt::white);
    reader.Read_Rows(&pixels);
    const int rows = pixels.height();
    return {TPageImage(pixels), rows - reader.Complete_Rows(), rows};
}
