#pragma once

#include <QImage>

class QIODevice;

/// Images without compression, for another process of the same version.
namespace RawImage {

/// Writes an image with everything that its PNG file would contain. False if the device fails.
bool Write(const QImage& image, QIODevice* device);

/// Reads an image; null if it is not complete.
QImage Read(QIODevice* device);

} // namespace RawImage
