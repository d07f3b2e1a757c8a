#include "src/model/pageimage.h"

#include "core/errorcapture.h"
#include "core/spool.h"
#include "core/workwatch.h"
#include "src/encoding/pngencoding.h"
#include "src/model/pixelstore.h"

#include <QBuffer>
#include <QFile>
#include <QImageReader>
#include <QPainter>
#include <QtEndian>

#include <utility>

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
    return height != 0 && qAbs(width) > TPageImage::Maximum_Pixels / qAbs(height);
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
    if (header.startsWith(TPageImage::Png_Signature))
        return Is_Too_Large(qFromBigEndian<quint32>(header.constData() + 16),
                            qFromBigEndian<quint32>(header.constData() + 20));
    return Is_Too_Large(qFromLittleEndian<qint32>(header.constData() + 4),
                        qFromLittleEndian<qint32>(header.constData() + 8));
}

/// How to decode the bytes of a file.
struct TDecoding
{
    QByteArray format; ///< tried first; empty to detect it from the bytes
    int picture = 0;   ///< in a file with several pictures
    TPageImage::TOrientation orientation = TPageImage::TOrientation::As_Stored;
};

/// Selects picture and orientation.
/// @return false if there is no such picture.
bool Prepare(const TDecoding& decoding, QImageReader* reader)
{
    reader->setAutoTransform(decoding.orientation == TPageImage::TOrientation::Upright);
    return decoding.picture == 0 || reader->jumpToImage(decoding.picture);
}

/// Whether the header declares too many pixels. Do not use the reader afterwards.
bool Declares_Too_Many_Pixels(QImageReader* reader)
{
    // Query the format first: some formats, such as icons, are not detected after the size was
    // read.
    const QByteArray format = reader->format();
    const QSize size = reader->size();
    if (Is_Too_Large(size.width(), size.height()))
        return true;
    return (format == "ico" || format == "cur") && Is_Icon_Too_Large(reader->device());
}

/// Decodes like QImage::fromData, but rejects headers that declare too many pixels.
QImage Decode(const QByteArray& bytes, const TDecoding& decoding)
{
    const TErrorCapture messages;
    TWatchedDevice<QBuffer> buffer;
    buffer.setData(bytes);
    // Reading the size moves the first reader on in its data, so a second one decodes the image.
    QImageReader header_reader(&buffer, decoding.format);
    if (!Prepare(decoding, &header_reader) || Declares_Too_Many_Pixels(&header_reader))
        return QImage();
    buffer.seek(0);
    QImageReader reader(&buffer, decoding.format);
    return Prepare(decoding, &reader) ? reader.read() : QImage();
}

/// Stands for an image that is lost or cannot be read.
QImage Placeholder(const QSize& known_size)
{
    const QSize size = known_size.isEmpty() ? QSize(1000, 1000) : known_size;
    QImage image(size, QImage::Format_RGB32);
    image.fill(Qt::lightGray);
    QPainter painter(&image);
    painter.setPen(QPen(Qt::gray, 1.0 + size.width() / 100.0));
    painter.drawLine(0, 0, size.width(), size.height());
    painter.drawLine(0, size.height(), size.width(), 0);
    return image;
}

quint64 Next_Id()
{
    static quint64 last = 0;
    return ++last;
}

/// The format that Qt detects from the content.
QByteArray Format_Of(const QByteArray& bytes)
{
    QBuffer buffer;
    buffer.setData(bytes);
    buffer.open(QIODevice::ReadOnly);
    return QImageReader::imageFormat(&buffer);
}

} // namespace

/// The data that all copies of a page image share.
struct TPageImage::TContent
{
    // Creates the cache first, so that it is destroyed after static page images.
    TContent()
        : id(Next_Id())
    {
        TPixelStore::Shared();
    }
    ~TContent() { TPixelStore::Shared().Remove(this); }
    Q_DISABLE_COPY(TContent)

    bool Is_Source_Png() const { return is_source_sufficient && has_png_signature; }

    enum TCaching { Cached, Uncached };
    QImage Pixels(TCaching caching = Cached);
    QImage True_Pixels(TCaching caching);
    void Keep_Decoded(const QImage& image, TCaching caching = Cached);

    enum TState { Not_Decoded, Decodable, Undecodable };

    quint64 id;
    QImage pixels;      ///< null for an image that was constructed from bytes
    TByteSource source; ///< the original bytes
    TDecoding decoding;
    TByteSource png;                  ///< created on demand
    bool has_png_signature = false;   ///< of the source
    bool is_source_sufficient = true; ///< Qt reads the same pixels without `decoding`
    TState state = Not_Decoded;
    QSize size{0, 0}; ///< in pixels; set when the source is decoded
};

/// The pixels, or the placeholder if the source is lost or cannot be read.
QImage TPageImage::TContent::Pixels(TCaching caching)
{
    const QImage image = True_Pixels(caching);
    return image.isNull() && state != Undecodable ? Placeholder(size) : image;
}

/// Returns the original pixels or those in the cache, or decodes the source. Null if that is lost
/// or cannot be read.
///
/// Pixels that are used only once are not cached, so that they do not replace those of displayed
/// pages.
QImage TPageImage::TContent::True_Pixels(TCaching caching)
{
    if (!pixels.isNull() || state == Undecodable)
        return pixels;
    QImage image = TPixelStore::Shared().Find(this);
    if (!image.isNull())
        return image;
    const QByteArray bytes = source.Read();
    // An image is not undecodable because its bytes could not be read.
    if (bytes.size() != source.Size())
        return image;
    image = Decode(bytes, decoding);
    Keep_Decoded(image, caching);
    return image;
}

void TPageImage::TContent::Keep_Decoded(const QImage& image, TCaching caching)
{
    state = image.isNull() ? Undecodable : Decodable;
    size = image.size();
    if (!image.isNull() && caching == Cached)
        TPixelStore::Shared().Insert(this, image);
}

TPageImage::TPageImage(std::shared_ptr<TContent> content)
    : d_content(std::move(content))
{
}

TPageImage::TPageImage(const QImage& image)
{
    if (image.isNull())
        return;
    d_content = std::make_shared<TContent>();
    d_content->pixels = image;
    d_content->size = image.size();
    d_content->state = TContent::Decodable;
}

TPageImage TPageImage::From_Bytes(const TByteSource& bytes)
{
    if (bytes.Is_Empty())
        return TPageImage();
    auto content = std::make_shared<TContent>();
    content->source = bytes;
    content->has_png_signature = bytes.Begins_With(Png_Signature);
    return TPageImage(std::move(content));
}

TPageImage TPageImage::From_File(const QString& path, const QByteArray& wanted_format,
                                 TOrientation orientation)
{
    const TErrorCapture messages;
    // Not QImageReader(path), which tries suffixes if there is no such file.
    QFile header(path);
    QImageReader header_reader(&header, wanted_format);
    if (!header.open(QIODevice::ReadOnly) || Declares_Too_Many_Pixels(&header_reader))
        return TPageImage();
    TWatchedDevice<QFile> watched(path);
    QImageReader reader(&watched, wanted_format);
    const TDecoding decoding{reader.format(), 0, orientation};
    Prepare(decoding, &reader);
    const bool is_transformed = reader.autoTransform() && reader.transformation();
    QImage image = reader.read();
    if (image.isNull())
        return TPageImage();
    // Qt takes an image named "name@2x.png" for one of half the size.
    image.setDevicePixelRatio(1.0);
    QFile file(path);
    const QByteArray bytes = file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    if (bytes.isEmpty() || bytes.size() != file.size())
        return TPageImage(image);
    TPageImage result = From_Bytes(Spool::Keep(bytes));
    result.d_content->decoding = decoding;
    result.d_content->is_source_sufficient = !is_transformed && Format_Of(bytes) == decoding.format;
    result.d_content->Keep_Decoded(image);
    return result;
}

int TPageImage::Picture_Count(const QString& path)
{
    const TErrorCapture messages;
    QFile file(path);
    QImageReader reader(&file);
    return reader.format() == "tiff" ? qMax(1, reader.imageCount()) : 1;
}

TPageImage TPageImage::Picture(int index) const
{
    if (index == 0 || !d_content)
        return *this;
    auto content = std::make_shared<TContent>();
    content->source = d_content->source;
    content->decoding = d_content->decoding;
    content->decoding.picture = index;
    content->is_source_sufficient = false;
    return content->Pixels().isNull() ? TPageImage() : TPageImage(std::move(content));
}

bool TPageImage::Is_Too_Large(const QSize& size)
{
    return ::Is_Too_Large(size.width(), size.height());
}

TPageImage::operator QImage() const
{
    return d_content ? d_content->Pixels() : QImage();
}

bool TPageImage::isNull() const
{
    return size().isEmpty();
}

QSize TPageImage::size() const
{
    if (!d_content)
        return QImage().size();
    if (d_content->state != TContent::Not_Decoded)
        return d_content->size;
    const QImage image = d_content->Pixels();
    return d_content->state == TContent::Not_Decoded ? image.size() : d_content->size;
}

TByteSource TPageImage::Stored_Png() const
{
    if (!d_content)
        return TByteSource();
    if (d_content->Is_Source_Png() && !d_content->source.Is_Lost())
        return d_content->source;
    if (d_content->png.Is_Empty()) {
        const QImage image = d_content->True_Pixels(TContent::Uncached);
        if (image.isNull())
            return d_content->source.Is_Lost() ? TByteSource() : d_content->source;
        d_content->png = Spool::Keep(PngEncoding::Encode(image));
    }
    return d_content->png;
}

bool TPageImage::Needs_Encoding() const
{
    return d_content && d_content->png.Is_Empty() && !d_content->Is_Source_Png() &&
           d_content->state != TContent::Undecodable && !Is_Lost();
}

void TPageImage::Set_Png(const QByteArray& png) const
{
    if (Needs_Encoding())
        d_content->png = Spool::Keep(png);
}

QImage TPageImage::Pixels_Once() const
{
    return d_content ? d_content->Pixels(TContent::Uncached) : QImage();
}

TByteSource TPageImage::Stored_Source() const
{
    return d_content && !d_content->source.Is_Empty() && d_content->is_source_sufficient &&
                   !d_content->source.Is_Lost()
               ? d_content->source
               : Stored_Png();
}

bool TPageImage::Is_Lost() const
{
    return d_content && d_content->source.Is_Lost() && d_content->png.Is_Empty() &&
           TPixelStore::Shared().Find(d_content.get()).isNull();
}

quint64 TPageImage::Id() const
{
    return d_content ? d_content->id : 0;
}

TPageImage TPageImage::Encoded() const
{
    if (!d_content)
        return TPageImage();
    if (d_content->source.Is_Empty()) {
        TPageImage encoded = From_Bytes(Stored_Png());
        if (encoded.d_content)
            encoded.d_content->id = d_content->id;
        return encoded;
    }
    auto content = std::make_shared<TContent>();
    content->id = d_content->id;
    content->source = d_content->source;
    content->has_png_signature = d_content->has_png_signature;
    content->decoding = d_content->decoding;
    content->png = d_content->png;
    content->is_source_sufficient = d_content->is_source_sufficient;
    content->state = d_content->state;
    content->size = d_content->size;
    return TPageImage(std::move(content));
}
