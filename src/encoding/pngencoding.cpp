#include "src/encoding/pngencoding.h"

#include "core/workwatch.h"

#include <QBuffer>
#include <QImage>

QByteArray PngEncoding::Encode(const QImage& image)
{
    QByteArray png;
    TWatchedDevice<QBuffer> buffer(&png);
    buffer.open(QIODevice::WriteOnly);
    return image.save(&buffer, "PNG") && Is_Complete(png) ? png : QByteArray();
}

bool PngEncoding::Is_Complete(const QByteArray& png)
{
    // The type of the last chunk, which is empty, and its checksum.
    return png.endsWith(QByteArray("IEND\xAE\x42\x60\x82", 8));
}
