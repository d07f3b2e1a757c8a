#pragma once

#include <QByteArray>
#include <QImage>
#include <QSize>

class QImageReader;

/// How to decode the bytes of an image file.
struct TImageDecoding
{
    QByteArray format;       ///< tried first; empty to detect it from the bytes
    int picture = 0;         ///< in a file with several pictures
    bool is_upright = false; ///< whether to apply the orientation in the file

    /// Images whose header declares more pixels than this are not decoded.
    static constexpr qint64 Maximum_Pixels = 500'000'000;
    static bool Is_Too_Large(const QSize& size);

    /// Whether the header declares too many pixels. Do not use the reader afterwards.
    static bool Declares_Too_Many_Pixels(QImageReader* reader);

    /// The format that Qt detects from the content.
    static QByteArray Format_Of(const QByteArray& bytes);

    /// Selects picture and orientation.
    /// @return false if there is no such picture.
    bool Prepare(QImageReader* reader) const;

    /// Decodes like QImage::fromData, but rejects headers that declare too many pixels. Notifies
    /// TWorkWatch.
    QImage Decode(const QByteArray& bytes) const;
};
