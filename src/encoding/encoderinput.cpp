#include "src/encoding/encoderinput.h"

#include "src/encoding/rawimage.h"

#include <QDataStream>
#include <QIODevice>

qint64 TEncoderInput::Pixel_Count() const
{
    const QSize image_size = pixels.isNull() ? size : pixels.size();
    return qint64{image_size.width()} * image_size.height();
}

qint64 TEncoderInput::Memory() const
{
    constexpr qint64 largest_pixel = 16; // bytes
    return largest_pixel * Pixel_Count() + file.Size();
}

QImage TEncoderInput::Image() const
{
    if (!pixels.isNull())
        return pixels;
    QImage image = decoding.Decode(file.Read());
    image.setDotsPerMeterX(dots_per_meter.width());
    image.setDotsPerMeterY(dots_per_meter.height());
    return image;
}

bool TEncoderInput::Write_To(QIODevice* device) const
{
    QDataStream stream(device);
    stream << pixels.isNull();
    if (!pixels.isNull())
        return stream.status() == QDataStream::Ok && RawImage::Write(pixels, device);
    stream << decoding.format << qint32{decoding.picture} << decoding.is_upright << size
           << dots_per_meter;
    return stream.status() == QDataStream::Ok && file.Write_To(device);
}

TEncoderInput TEncoderInput::Read_From(QIODevice* device)
{
    TEncoderInput input;
    QDataStream stream(device);
    bool is_file = false;
    stream >> is_file;
    if (stream.status() != QDataStream::Ok)
        return input;
    if (!is_file) {
        input.pixels = RawImage::Read(device);
        return input;
    }
    qint32 picture = 0;
    stream >> input.decoding.format >> picture >> input.decoding.is_upright >> input.size >>
        input.dots_per_meter;
    input.decoding.picture = picture;
    if (stream.status() == QDataStream::Ok)
        input.file = device->readAll();
    return input;
}
