#include "src/encoding/imagedecoding.h"

#include "core/errorcapture.h"
#include "core/workwatch.h"
#include "src/encoding/pngencoding.h"

#include <QBuffer>
#include <QImageReader>
#include <QtEndian>

namespace {

#if QT_VERSION >= QT_VERSION_CHECK(6, 0, 0)
/// Removes the limit of 128 MiB that Qt 6 has for all images; Is_Too_Large is the limit here.
const bool is_allocation_unlimited = [] {
    QImageReader::setAllocationLimit(0);
    return QImageReader::allocationLimit() == 0;
}();
#endif

bool Is_Too_Large(qint64 width, qint64 height)
{
    // A negative height means that the lines are stored from top to bottom.
    return height != 0 && qAbs(width) > TImageDecoding::Maximum_Pixels / qAbs(height);
}

/// Whether the header of an icon file's first picture declares too many pixels. The directory of an
/// icon file has only one byte for a width, and QImageReader returns that instead of the true size.
bool Is_Icon_Too_Large(QIODevice* device)
{
    constexpr int offset_position = 18;
    constexpr int header_size = 24;
    if (!device->seek(offset_position))
        return false;
    const QByteArray offset = device->read(sizeof(quint32));
    if (offset.size() < static_cast<int>(sizeof(quint32)) ||
        !device->seek(qFromLittleEndian<quint32>(offset.constData())))
        return false;
    const QByteArray header = device->read(header_size);
    if (header.size() < header_size)
        return false;
    if (header.startsWith(PngEncoding::Signature))
        return Is_Too_Large(qFromBigEndian<quint32>(header.constData() + 16),
                            qFromBigEndian<quint32>(header.constData() + 20));
    return Is_Too_Large(qFromLittleEndian<qint32>(header.constData() + 4),
                        qFromLittleEndian<qint32>(header.constData() + 8));
}

} // namespace

bool TImageDecoding::Is_Too_Large(const QSize& size)
{
    return ::Is_Too_Large(size.width(), size.height());
}

bool TImageDecoding::Declares_Too_Many_Pixels(QImageReader* reader)
{
    // Query the format first: some formats, such as icons, are not detected after the size was
    // read.
    const QByteArray format = reader->format();
    if (Is_Too_Large(reader->size()))
        return true;
    return (format == "ico" || format == "cur") && Is_Icon_Too_Large(reader->device());
}

QByteArray TImageDecoding::Format_Of(const QByteArray& bytes)
{
    QBuffer buffer;
    buffer.setData(bytes);
    buffer.open(QIODevice::ReadOnly);
    return QImageReader::imageFormat(&buffer);
}

bool TImageDecoding::Prepare(QImageReader* reader) const
{
    reader->setAutoTransform(is_upright);
    return picture == 0 || reader->jumpToImage(picture);
}

QImage TImageDecoding::Decode(const QByteArray& bytes) const
{
    const TErrorCapture messages;
    TWatchedDevice<QBuffer> buffer;
    buffer.setData(bytes);
    // Reading the size moves the first reader on in its data, so a second one decodes the image.
    QImageReader header_reader(&buffer, format);
    if (!Prepare(&header_reader) || Declares_Too_Many_Pixels(&header_reader))
        return QImage();
    buffer.seek(0);
    QImageReader reader(&buffer, format);
    return Prepare(&reader) ? reader.read() : QImage();
}
