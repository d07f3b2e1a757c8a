#include "src/model/pageimage.h"

#include "core/workwatch.h"

#include <QBuffer>
#include <QFile>
#include <QHash>
#include <QImageReader>
#include <QtEndian>

#include <algorithm>
#include <list>
#include <utility>

namespace {

constexpr char png_signature[] = "\x89PNG\r\n\x1a\n";

/// Decoded pixels of all page images, the ones used last in front. Its users are known by address.
class TPixelStore
{
public:
    /// The pixels of a user, which count as used now; null when they are not here.
    QImage Find(const void* user)
    {
        const auto place = d_places.constFind(user);
        if (place == d_places.constEnd())
            return QImage();
        d_entries.splice(d_entries.begin(), d_entries, place.value());
        return d_entries.front().second;
    }

    /// Takes pixels in and forgets those used longest ago until the rest fits; the new ones stay.
    void Insert(const void* user, const QImage& pixels)
    {
        Remove(user);
        d_entries.emplace_front(user, pixels);
        d_places.insert(user, d_entries.begin());
        d_bytes += pixels.sizeInBytes();
        while (d_bytes > TPageImage::Store_Bytes && d_entries.size() > 1)
            Remove(d_entries.back().first);
    }

    void Remove(const void* user)
    {
        const auto place = d_places.constFind(user);
        if (place == d_places.constEnd())
            return;
        d_bytes -= place.value()->second.sizeInBytes();
        d_entries.erase(place.value());
        d_places.erase(place);
    }

    qint64 Bytes() const { return d_bytes; }

private:
    using TEntries = std::list<std::pair<const void*, QImage>>;

    TEntries d_entries;
    QHash<const void*, TEntries::iterator> d_places;
    qint64 d_bytes = 0;
};

TPixelStore& Store()
{
    static TPixelStore store;
    return store;
}

bool Is_Too_Large(qint64 width, qint64 height)
{
    // An image may be stored upside down, with a negative height.
    return height != 0 && qAbs(width) > TPageImage::Maximum_Pixels / qAbs(height);
}

/// Whether the first picture of an icon file promises too many pixels. Icons are a case of their
/// own: their directory has one byte for a width, the picture inside decides, and the reader only
/// tells what the directory says.
bool Is_Icon_Too_Large(QIODevice* device)
{
    constexpr int offset_place = 18;
    constexpr int header_size = 24;
    if (!device->seek(offset_place))
        return false;
    const QByteArray offset = device->read(sizeof(quint32));
    if (offset.size() < static_cast<int>(sizeof(quint32)) ||
        !device->seek(qFromLittleEndian<quint32>(offset.constData())))
        return false;
    const QByteArray header = device->read(header_size);
    if (header.size() < header_size)
        return false;
    if (header.startsWith(png_signature))
        return Is_Too_Large(qFromBigEndian<quint32>(header.constData() + 16),
                            qFromBigEndian<quint32>(header.constData() + 20));
    return Is_Too_Large(qFromLittleEndian<qint32>(header.constData() + 4),
                        qFromLittleEndian<qint32>(header.constData() + 8));
}

/// Whether the header promises more pixels than are taken. The reader is spent afterwards.
bool Promises_Too_Much(QImageReader* reader)
{
    const QSize size = reader->size();
    if (Is_Too_Large(size.width(), size.height()))
        return true;
    const QByteArray format = reader->format();
    return (format == "ico" || format == "cur") && Is_Icon_Too_Large(reader->device());
}

/// Decodes as QImage::fromData does, except that huge promises are not believed.
/// @param format  what the decoder tries first; empty to detect the format by the content.
QImage Decode(const QByteArray& bytes, const QByteArray& format)
{
    TWatchedDevice<QBuffer> buffer;
    buffer.setData(bytes);
    buffer.open(QIODevice::ReadOnly);
    // Each reader starts afresh: asking for the size moves a reader on in its data.
    QImageReader header_reader(&buffer, format);
    if (Promises_Too_Much(&header_reader))
        return QImage();
    buffer.seek(0);
    return QImageReader(&buffer, format).read();
}

/// The format that a decoder detects by the content.
QByteArray Format_Of(const QByteArray& bytes)
{
    QBuffer buffer;
    buffer.setData(bytes);
    buffer.open(QIODevice::ReadOnly);
    return QImageReader::imageFormat(&buffer);
}

} // namespace

/// What all copies of one page image share: its bytes or its pixels, and what was found out.
struct TPageImage::TContent
{
    // The store has to outlive every content, and statics are destroyed in reverse order.
    TContent() { Store(); }
    ~TContent() { Store().Remove(this); }
    Q_DISABLE_COPY(TContent)

    enum TUse { Looked_At, Passed_On };
    QImage Pixels(TUse use = Looked_At);
    void Keep_Decoded(const QImage& image, TUse use = Looked_At);

    enum TVerdict { Not_Decoded, Decodable, Undecodable };

    QImage pixels;            ///< of an image that came as pixels; null for one that came as bytes
    QByteArray source;        ///< the bytes in which the image came; may refer to owner's
    QByteArray owner;         ///< array of which the source is a part
    QByteArray format;        ///< of the source, when its content alone does not tell
    QByteArray png;           ///< encoded by us; empty until somebody asks for it
    bool tells_format = true; ///< whether the source is read alike without its format
    TVerdict verdict = Not_Decoded;
    QSize size{0, 0}; ///< in pixels, known once the source turned out to be decodable
};

/// The pixels that the image came with, those in the store, or newly decoded ones.
/// @param use  pixels that are only passed on do not drive those out of the store that somebody
///             looks at.
QImage TPageImage::TContent::Pixels(TUse use)
{
    if (!pixels.isNull() || verdict == Undecodable)
        return pixels;
    QImage image = Store().Find(this);
    if (image.isNull()) {
        image = Decode(source, format);
        Keep_Decoded(image, use);
    }
    return image;
}

void TPageImage::TContent::Keep_Decoded(const QImage& image, TUse use)
{
    verdict = image.isNull() ? Undecodable : Decodable;
    size = image.size();
    if (!image.isNull() && use == Looked_At)
        Store().Insert(this, image);
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
    d_content->verdict = TContent::Decodable;
}

TPageImage TPageImage::From_Bytes(const QByteArray& bytes)
{
    return From_Part(bytes, 0, bytes.size());
}

TPageImage TPageImage::From_Part(const QByteArray& whole, int offset, int length)
{
    const int start = qBound(0, offset, whole.size());
    const int end =
        static_cast<int>(qBound<qint64>(start, static_cast<qint64>(offset) + length, whole.size()));
    if (start == end)
        return TPageImage();
    auto content = std::make_shared<TContent>();
    if (end - start == whole.size()) {
        content->source = whole;
    } else {
        content->owner = whole;
        content->source = QByteArray::fromRawData(whole.constData() + start, end - start);
    }
    return TPageImage(std::move(content));
}

TPageImage TPageImage::From_File(const QString& path, const QByteArray& wanted_format)
{
    QImageReader header_reader(path, wanted_format);
    if (Promises_Too_Much(&header_reader))
        return TPageImage();
    // The reader also finds files whose suffix was left out.
    const QString found_path = header_reader.fileName();
    TWatchedDevice<QFile> watched(found_path);
    QImageReader reader(&watched, wanted_format);
    const QByteArray format = reader.format();
    const QImage image = reader.read();
    if (image.isNull())
        return TPageImage();
    QFile file(found_path);
    const QByteArray bytes = file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    if (bytes.isEmpty() || bytes.size() != file.size())
        return TPageImage(image);
    TPageImage result = From_Bytes(bytes);
    result.d_content->format = format;
    result.d_content->tells_format = Format_Of(bytes) == format;
    result.d_content->Keep_Decoded(image);
    return result;
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
    if (d_content->verdict == TContent::Not_Decoded)
        d_content->Pixels();
    return d_content->size;
}

QByteArray TPageImage::Png() const
{
    if (!d_content)
        return QByteArray();
    if (d_content->source.startsWith(png_signature))
        return d_content->source;
    if (d_content->png.isEmpty()) {
        const QImage image = d_content->Pixels(TContent::Passed_On);
        if (image.isNull())
            return d_content->source;
        TWatchedDevice<QBuffer> buffer(&d_content->png);
        buffer.open(QIODevice::WriteOnly);
        image.save(&buffer, "PNG");
    }
    return d_content->png;
}

QByteArray TPageImage::Source_Bytes() const
{
    return d_content && !d_content->source.isEmpty() && d_content->tells_format ? d_content->source
                                                                                : Png();
}

TPageImage TPageImage::Encoded() const
{
    if (!d_content)
        return TPageImage();
    if (d_content->source.isEmpty())
        return From_Bytes(Png());
    auto content = std::make_shared<TContent>();
    content->source = d_content->source;
    content->owner = d_content->owner;
    content->format = d_content->format;
    content->png = d_content->png;
    content->tells_format = d_content->tells_format;
    content->verdict = d_content->verdict;
    content->size = d_content->size;
    return TPageImage(std::move(content));
}

qint64 TPageImage::Stored_Bytes()
{
    return Store().Bytes();
}
