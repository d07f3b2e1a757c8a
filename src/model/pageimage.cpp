#include "src/model/pageimage.h"

#include "core/errorcapture.h"
#include "core/spool.h"
#include "core/workwatch.h"
#include "src/encoding/encoderinput.h"
#include "src/encoding/pngencoding.h"
#include "src/model/pixelstore.h"

#include <QBuffer>
#include <QFile>
#include <QImageReader>
#include <QPainter>

#include <utility>

namespace {

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

/// Whether each process decodes the same pixels from a file of this format. Others, such as SVG,
/// depend on the fonts of this one.
bool Is_Bitmap_Format(const QByteArray& format)
{
    static const QList<QByteArray> formats{"jpeg", "jpg", "png",  "bmp", "gif", "tiff",
                                           "tif",  "pbm", "webp", "pgm", "ppm"};
    return formats.contains(format.toLower());
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
    QImage Decoded_Png(TCaching caching);
    void Keep_Decoded(const QImage& image, TCaching caching = Cached);

    enum TState { Not_Decoded, Decodable, Undecodable };

    quint64 id;
    QImage pixels;      ///< null for an image that was constructed from bytes
    TByteSource source; ///< the original bytes
    TImageDecoding decoding;
    TByteSource png;                  ///< created on demand
    bool has_png_signature = false;   ///< of the source
    bool is_source_sufficient = true; ///< Qt reads the same pixels without `decoding`
    TState state = Not_Decoded;
    QSize size{0, 0};           ///< in pixels; set when the source is decoded
    QSize dots_per_meter{0, 0}; ///< set when the source is decoded
};

/// The pixels, or the placeholder if the source is lost or cannot be read.
QImage TPageImage::TContent::Pixels(TCaching caching)
{
    const QImage image = True_Pixels(caching);
    return image.isNull() && state != Undecodable ? Placeholder(size) : image;
}

/// Returns the original pixels or those in the cache, or decodes the source. If that is lost or
/// cannot be read, decodes the PNG. Null without a PNG.
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
        return Decoded_Png(caching);
    image = decoding.Decode(bytes);
    Keep_Decoded(image, caching);
    return image;
}

QImage TPageImage::TContent::Decoded_Png(TCaching caching)
{
    if (png.Is_Empty())
        return QImage();
    QImage image = TImageDecoding().Decode(png.Read());
    if (!image.isNull())
        Keep_Decoded(image, caching);
    return image;
}

void TPageImage::TContent::Keep_Decoded(const QImage& image, TCaching caching)
{
    state = image.isNull() ? Undecodable : Decodable;
    size = image.size();
    dots_per_meter = {image.dotsPerMeterX(), image.dotsPerMeterY()};
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
    if (!header.open(QIODevice::ReadOnly) ||
        TImageDecoding::Declares_Too_Many_Pixels(&header_reader))
        return TPageImage();
    TWatchedDevice<QFile> watched(path);
    QImageReader reader(&watched, wanted_format);
    const TImageDecoding decoding{reader.format(), 0, orientation == TOrientation::Upright};
    decoding.Prepare(&reader);
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
    result.d_content->is_source_sufficient =
        !is_transformed && TImageDecoding::Format_Of(bytes) == decoding.format;
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
    return TImageDecoding::Is_Too_Large(size);
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
    // Even if the source is lost: the process that encoded it had a copy.
    if (d_content && d_content->png.Is_Empty() && !d_content->Is_Source_Png())
        d_content->png = Spool::Keep(png);
}

TEncoderInput TPageImage::Encoder_Input() const
{
    if (!d_content)
        return {};
    // The resolution is unknown before the file is decoded. A file of many pictures is larger than
    // the pixels of one.
    const qint64 pixel_size = qint64{d_content->size.width()} * d_content->size.height() * 4;
    if (!d_content->source.Is_Empty() && d_content->state == TContent::Decodable &&
        d_content->source.Size() <= pixel_size && Is_Bitmap_Format(d_content->decoding.format))
        return {QImage(), d_content->source, d_content->decoding, d_content->size,
                d_content->dots_per_meter};
    return {d_content->True_Pixels(TContent::Uncached)};
}

bool TPageImage::Is_Decoded() const
{
    return d_content && d_content->state != TContent::Not_Decoded;
}

bool TPageImage::Has_Source() const
{
    return d_content && !d_content->source.Is_Empty() && d_content->is_source_sufficient &&
           !d_content->source.Is_Lost();
}

TByteSource TPageImage::Stored_Source() const
{
    return Has_Source() ? d_content->source : Stored_Png();
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
    content->dots_per_meter = d_content->dots_per_meter;
    return TPageImage(std::move(content));
}
