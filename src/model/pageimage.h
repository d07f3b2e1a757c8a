#pragma once

#include <QByteArray>
#include <QImage>
#include <QSize>

#include <memory>

/// The picture of one page: known as encoded bytes, as pixels, or as both.
///
/// A scan weighs some megabytes as a file and ten times that as pixels, and only one page is looked
/// at at a time. A page image therefore keeps the bytes in which it came and decodes them when
/// somebody asks for pixels; decoded pixels stay in a store of 256 MiB that all page images share
/// and that forgets those that were used longest ago. PNG bytes are made at most once and kept.
///
/// It is a value: copies are cheap and share what is known; assigning replaces. It converts to and
/// from QImage, so that code that reads or assigns a QImage need not know it. Whether bytes are an
/// image at all is only known once they have been decoded; the first question about pixels, size or
/// nullness decodes them, and the answer is kept when the pixels are not. GUI thread only.
class TPageImage
{
public:
    /// A null image: no bytes, no pixels.
    TPageImage() = default;

    /// An image known as pixels; they are kept for as long as the image lives.
    TPageImage(const QImage& image);

    /// An image known as encoded bytes, of whatever format the decoder detects. Nothing is decoded.
    /// Empty bytes give a null image. Bytes that cannot be decoded behave as a null image, but are
    /// still there to be written back.
    static TPageImage From_Bytes(const QByteArray& bytes);

    /// The same, for a part of a larger array, which is kept alive but not copied. Bytes that this
    /// image hands out are only valid while a copy of the image lives.
    /// @param offset, length  the part, in bytes; clipped to the array.
    static TPageImage From_Part(const QByteArray& whole, int offset, int length);

    /// The same, with the content of a file, whose pixels are decoded at once because that is the
    /// only way to know that it is an image. Accepts what QImage(path) accepts; null when the file
    /// cannot be read as an image.
    static TPageImage From_File(const QString& path, const QByteArray& format = QByteArray());

    /// The pixels; null when there are none or they cannot be decoded.
    operator QImage() const;

    /// As QImage::isNull of the decoded image.
    bool isNull() const;

    /// As QImage::size of the decoded image, in pixels; (0, 0) when it is null.
    QSize size() const;
    int width() const { return size().width(); }
    int height() const { return size().height(); }

    /// The image as PNG at default quality, encoded at most once. Bytes that are PNG already are
    /// handed out as they are, and so are bytes that cannot be decoded. Empty for an image without
    /// bytes and pixels.
    QByteArray Png() const;

    /// The bytes in which the image came, whatever their format; PNG for one that came as pixels,
    /// and for one whose format nobody could tell from its bytes alone.
    QByteArray Source_Bytes() const;

    /// Whether two images share their content: one is a copy of the other.
    bool Is_Copy_Of(const TPageImage& other) const { return d_content == other.d_content; }

    /// Whether two images have the same source bytes.
    bool Is_Same(const TPageImage& other) const
    {
        return Is_Copy_Of(other) || Source_Bytes() == other.Source_Bytes();
    }

    /// The same image, known by its bytes alone, for keeping: it holds no pixels, nor are any of it
    /// in the store. One that came as pixels is encoded for it.
    TPageImage Encoded() const;

    /// Images whose header promises more pixels than this count as undecodable.
    static constexpr qint64 Maximum_Pixels = 500'000'000;

    /// How many bytes of decoded pixels the shared store keeps at the most (the last used image
    /// stays even when it alone is larger).
    static constexpr qint64 Store_Bytes = 256LL * 1024 * 1024;

    /// How many bytes of decoded pixels the shared store keeps now.
    static qint64 Stored_Bytes();

private:
    struct TContent;
    explicit TPageImage(std::shared_ptr<TContent> content);

    /// Shared by all copies of one image; empty when there are neither bytes nor pixels.
    std::shared_ptr<TContent> d_content;
};

/// Whether the pixels are equal, as QImage compares them. Decodes what has to be compared.
inline bool operator==(const TPageImage& left, const QImage& right)
{
    return static_cast<QImage>(left) == right;
}

inline bool operator!=(const TPageImage& left, const QImage& right)
{
    return !(left == right);
}
