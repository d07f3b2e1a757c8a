// Layout: a header in the encoding of QDataStream, and the lines of pixels from top to bottom.

#include "src/encoding/rawimage.h"

#include <QColorSpace>
#include <QDataStream>
#include <QMap>
#include <QVector>

namespace {

/// Bytes of a line without the padding of QImage.
qint64 Line_Size(const QImage& image)
{
    constexpr int bits = 8;
    return (qint64{image.width()} * image.depth() + bits - 1) / bits;
}

QMap<QString, QString> Texts(const QImage& image)
{
    QMap<QString, QString> texts;
    const QStringList keys = image.textKeys();
    for (const QString& key : keys)
        texts.insert(key, image.text(key));
    return texts;
}

} // namespace

bool RawImage::Write(const QImage& image, QIODevice* device)
{
    QDataStream stream(device);
    stream << image.size() << static_cast<qint32>(image.format()) << image.dotsPerMeterX()
           << image.dotsPerMeterY() << image.offset() << image.colorTable() << Texts(image)
           << image.colorSpace();
    const qint64 line_size = Line_Size(image);
    for (int y = 0; y < image.height(); ++y) {
        if (device->write(reinterpret_cast<const char*>(image.constScanLine(y)), line_size) !=
            line_size)
            return false;
    }
    return stream.status() == QDataStream::Ok;
}

QImage RawImage::Read(QIODevice* device)
{
    QDataStream stream(device);
    QSize size;
    qint32 format = QImage::Format_Invalid;
    int dots_x = 0;
    int dots_y = 0;
    QPoint offset;
    QVector<QRgb> colors;
    QMap<QString, QString> texts;
    QColorSpace color_space;
    stream >> size >> format >> dots_x >> dots_y >> offset >> colors >> texts >> color_space;
    if (stream.status() != QDataStream::Ok || format <= QImage::Format_Invalid ||
        format >= QImage::NImageFormats)
        return QImage();
    QImage image(size, static_cast<QImage::Format>(format));
    const qint64 line_size = Line_Size(image);
    for (int y = 0; y < image.height(); ++y) {
        if (device->read(reinterpret_cast<char*>(image.scanLine(y)), line_size) != line_size)
            return QImage();
    }
    image.setColorTable(colors);
    image.setDotsPerMeterX(dots_x);
    image.setDotsPerMeterY(dots_y);
    image.setOffset(offset);
    // Qt 6 takes an image without colour space for different from one with an invalid one.
    if (color_space.isValid())
        image.setColorSpace(color_space);
    for (auto text = texts.cbegin(); text != texts.cend(); ++text)
        image.setText(text.key(), text.value());
    return image;
}
