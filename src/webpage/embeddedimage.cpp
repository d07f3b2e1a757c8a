#include "src/webpage/embeddedimage.h"

#include <QBuffer>
#include <QImageReader>

#include <algorithm>
#include <array>

namespace {

constexpr std::array<const char*, 3> browser_formats = {"png", "jpeg", "webp"};
constexpr int jpeg_quality = 90;

bool Is_Browser_Format(const QByteArray& format)
{
    return std::find(browser_formats.cbegin(), browser_formats.cend(), format) !=
           browser_formats.cend();
}

bool Is_Too_Large(const QSize& size)
{
    return static_cast<qint64>(size.width()) * size.height() > TPageImage::Maximum_Pixels;
}

/// The image in fewer pixels.
QByteArray Scaled(const QImage& image, int width, const QByteArray& format)
{
    QByteArray bytes;
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::WriteOnly);
    image.scaledToWidth(width, Qt::SmoothTransformation)
        .save(&buffer, format.constData(), format == "jpeg" ? jpeg_quality : -1);
    return bytes;
}

} // namespace

TEmbeddedImage::TEmbeddedImage(const TPageImage& image)
    : d_image(image)
{
    QByteArray bytes = image.Source_Bytes();
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::ReadOnly);
    QImageReader reader(&buffer);
    const QByteArray format = reader.format();
    d_size = reader.size();
    if (Is_Browser_Format(format) && !d_size.isEmpty())
        d_stored_format = format;
    else
        d_size = image.size();
    if (Is_Too_Large(d_size))
        d_size = QSize();
}

TEmbeddedImage::TDataUrl TEmbeddedImage::Data_Url(int max_width) const
{
    QByteArray format = d_stored_format.isEmpty() ? QByteArray("png") : d_stored_format;
    QByteArray bytes;
    if (max_width > 0 && d_size.width() > max_width) {
        format = format == "jpeg" ? "jpeg" : "png";
        bytes = Scaled(d_image, max_width, format);
    } else {
        bytes = d_stored_format.isEmpty() ? d_image.Png() : d_image.Source_Bytes();
    }
    return {"data:image/" + format + ";base64,", bytes.toBase64()};
}
