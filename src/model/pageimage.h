#pragma once

#include "core/bytesource.h"
#include "src/encoding/imagedecoding.h"
#include "src/encoding/pngencoding.h"

#include <QByteArray>
#include <QColor>
#include <QImage>
#include <QPoint>
#include <QRect>
#include <QSize>
#include <QTransform>

#include <memory>

struct TEncoderInput;

/// The image of a page, as encoded bytes, as pixels, or both.
///
/// A scan takes some megabytes as a file, but ten times as much as pixels, and only one page is
/// shown at a time. So a page image keeps its original bytes and decodes them on demand. Those of a
/// large file stay there; see TByteSource. The decoded pixels of all page images are in a cache of
/// limited size, TPixelStore. An image is encoded as PNG at most once.
///
/// Copies are cheap and share their data. Conversions from and to QImage are implicit, and the
/// const functions of QImage that describe an image or derive another one exist here, too. The
/// first access to pixels, size or isNull() decodes the bytes; size and validity are then kept even
/// when the pixels are dropped. GUI thread only.
class TPageImage
{
public:
    /// Constructs a null image without bytes and pixels.
    TPageImage() = default;

    /// Constructs an image from pixels, which are kept as long as the image lives.
    TPageImage(const QImage& image);

    /// Constructs an image from encoded bytes, without decoding them. Qt detects the format. The
    /// result is null for empty bytes, and also for bytes that cannot be decoded, but those are
    /// kept and can be saved again.
    static TPageImage From_Bytes(const TByteSource& bytes);
    static TPageImage From_Bytes(const QByteArray& bytes) { return From_Bytes(TByteSource(bytes)); }

    /// Whether the orientation in the file, usually from a camera's EXIF data, is applied.
    enum class TOrientation { As_Stored, Upright };

    /// Constructs an image from a file that QImage(path) accepts. Decodes it at once to check that
    /// it is an image; otherwise returns a null image.
    /// @param format  tried first; empty to detect the format.
    static TPageImage From_File(const QString& path, const QByteArray& format = QByteArray(),
                                TOrientation orientation = TOrientation::As_Stored);

    /// Number of pictures in an image file. More than 1 only for TIFF: other formats store
    /// animations or several sizes of the same picture.
    static int Picture_Count(const QString& path);

    /// Another picture of the file that From_File read, oriented in the same way. Decodes it at
    /// once; null if that fails.
    /// @param index  from 0; 0 is the picture that From_File returned.
    TPageImage Picture(int index) const;

    /// The pixels; null when there are none or they cannot be decoded.
    operator QImage() const;

    /// As QImage::isNull of the decoded image.
    bool isNull() const;

    /// As QImage::size of the decoded image, in pixels; (0, 0) when it is null.
    QSize size() const;
    int width() const { return size().width(); }
    int height() const { return size().height(); }

    // As in QImage, so that code for an image also takes a page image. All of them decode, and
    // hold the pixels no longer than the call. The result is that of the decoded image.
    QImage::Format format() const { return Decoded().format(); }
    int depth() const { return Decoded().depth(); }
    QRect rect() const { return {QPoint(), size()}; }
    bool valid(int x, int y) const { return rect().contains(x, y); }
    bool valid(const QPoint& point) const { return rect().contains(point); }
    QRgb pixel(int x, int y) const { return Decoded().pixel(x, y); }
    QRgb pixel(const QPoint& point) const { return Decoded().pixel(point); }
    QColor pixelColor(int x, int y) const { return Decoded().pixelColor(x, y); }
    QColor pixelColor(const QPoint& point) const { return Decoded().pixelColor(point); }
    bool hasAlphaChannel() const { return Decoded().hasAlphaChannel(); }
    qreal devicePixelRatio() const { return Decoded().devicePixelRatio(); }
    int dotsPerMeterX() const { return Decoded().dotsPerMeterX(); }
    int dotsPerMeterY() const { return Decoded().dotsPerMeterY(); }
    QImage copy(const QRect& part = QRect()) const { return Decoded().copy(part); }
    QImage copy(int x, int y, int width, int height) const
    {
        return Decoded().copy(x, y, width, height);
    }
    QImage scaled(const QSize& size, Qt::AspectRatioMode aspect_ratio = Qt::IgnoreAspectRatio,
                  Qt::TransformationMode mode = Qt::FastTransformation) const
    {
        return Decoded().scaled(size, aspect_ratio, mode);
    }
    QImage scaled(int width, int height, Qt::AspectRatioMode aspect_ratio = Qt::IgnoreAspectRatio,
                  Qt::TransformationMode mode = Qt::FastTransformation) const
    {
        return Decoded().scaled(width, height, aspect_ratio, mode);
    }
    QImage scaledToWidth(int width, Qt::TransformationMode mode = Qt::FastTransformation) const
    {
        return Decoded().scaledToWidth(width, mode);
    }
    QImage scaledToHeight(int height, Qt::TransformationMode mode = Qt::FastTransformation) const
    {
        return Decoded().scaledToHeight(height, mode);
    }
    QImage transformed(const QTransform& transform,
                       Qt::TransformationMode mode = Qt::FastTransformation) const
    {
        return Decoded().transformed(transform, mode);
    }
    QImage mirrored(bool horizontal = false, bool vertical = true) const
    {
        return Decoded().mirrored(horizontal, vertical);
    }
    QImage convertToFormat(QImage::Format format,
                           Qt::ImageConversionFlags flags = Qt::AutoColor) const
    {
        return Decoded().convertToFormat(format, flags);
    }
    bool save(const QString& path, const char* format = nullptr, int quality = -1) const
    {
        return Decoded().save(path, format, quality);
    }
    bool save(QIODevice* device, const char* format = nullptr, int quality = -1) const
    {
        return Decoded().save(device, format, quality);
    }

    /// The image as PNG in default quality, encoded at most once. Original bytes that are PNG or
    /// cannot be decoded are returned unchanged. Empty for an image without bytes and pixels, and
    /// for a lost one. Bytes in memory are valid only as long as a copy of the image lives.
    QByteArray Png() const { return Stored_Png().Read(); }

    /// The same, where it is stored.
    TByteSource Stored_Png() const;

    /// Whether Png() has to encode the image first.
    bool Needs_Encoding() const;

    /// Sets the result of Png() for an image that needs encoding, and for its copies.
    /// @param png  what QImage::save writes for the pixels, in default quality.
    void Set_Png(const QByteArray& png) const;

    /// What quillet-encode needs to encode the image as Png() does. The file that the image was
    /// read from, if possible; otherwise its pixels, which do not replace those of displayed pages
    /// in the cache.
    TEncoderInput Encoder_Input() const;

    /// The original bytes in any format. PNG for an image that was constructed from pixels, or if
    /// Qt would not read the same pixels from the original bytes alone.
    QByteArray Source_Bytes() const { return Stored_Source().Read(); }

    /// The same, where they are stored.
    TByteSource Stored_Source() const;

    /// Whether Source_Bytes() are the original bytes, so that nothing has to be encoded for them.
    bool Has_Source() const;

    /// Whether size and validity are known without decoding.
    bool Is_Decoded() const;

    /// Whether nothing is left of the image: another program has changed the file that contained
    /// it, and its pixels are not in the cache. Its pixels are those of a placeholder then: a gray
    /// page, crossed out, of the size that the image had if that is known. An image that cannot be
    /// read shows the same placeholder, but is not lost.
    bool Is_Lost() const;

    /// A number shared by the copies of an image that have the same source bytes, including those
    /// made by Encoded(). Unique in this process; 0 without bytes and pixels.
    quint64 Id() const;

    /// Whether two images share their content: one is a copy of the other.
    bool Is_Copy_Of(const TPageImage& other) const { return d_content == other.d_content; }

    /// Whether two images have the same source bytes.
    bool Is_Same(const TPageImage& other) const
    {
        return Is_Copy_Of(other) || Source_Bytes() == other.Source_Bytes();
    }

    /// A copy that contains only bytes and no pixels. Encodes an image that has only pixels.
    TPageImage Encoded() const;

    /// The first bytes of every PNG file.
    static constexpr auto& Png_Signature = PngEncoding::Signature;

    /// Images whose header declares more pixels than this count as undecodable.
    static constexpr qint64 Maximum_Pixels = TImageDecoding::Maximum_Pixels;
    static bool Is_Too_Large(const QSize& size);

private:
    QImage Decoded() const { return *this; }

    struct TContent;
    explicit TPageImage(std::shared_ptr<TContent> content);

    /// Shared by all copies of one image; empty when there are neither bytes nor pixels.
    std::shared_ptr<TContent> d_content;
};

/// Compares the pixels as QImage does. Decodes the images if necessary.
inline bool operator==(const TPageImage& left, const QImage& right)
{
    return static_cast<QImage>(left) == right;
}

inline bool operator==(const QImage& left, const TPageImage& right)
{
    return right == left;
}

inline bool operator==(const TPageImage& left, const TPageImage& right)
{
    return left.Is_Copy_Of(right) || left == static_cast<QImage>(right);
}

inline bool operator!=(const TPageImage& left, const QImage& right)
{
    return !(left == right);
}

inline bool operator!=(const QImage& left, const TPageImage& right)
{
    return !(left == right);
}

inline bool operator!=(const TPageImage& left, const TPageImage& right)
{
    return !(left == right);
}
