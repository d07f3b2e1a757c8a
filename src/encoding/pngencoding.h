#pragma once

#include <QByteArray>

class QImage;

/// How all PNG files of pages are encoded.
namespace PngEncoding {

/// The first bytes of every PNG file.
inline constexpr char Signature[] = "\x89PNG\r\n\x1a\n";

/// An image as QImage::save encodes it in default quality; empty on failure. Notifies TWorkWatch.
QByteArray Encode(const QImage& image);

/// Whether bytes end as every complete PNG does.
bool Is_Complete(const QByteArray& png);

} // namespace PngEncoding
