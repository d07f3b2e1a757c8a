#pragma once

#include "core/bytesource.h"
#include "src/encoding/imagedecoding.h"

#include <QImage>
#include <QSize>

class QIODevice;

/// An image to be encoded by another process of the same version: pixels, or an image file.
struct TEncoderInput
{
    QImage pixels;
    TByteSource file = {};        ///< used if there are no pixels
    TImageDecoding decoding = {}; ///< of the file
    QSize size = {};              ///< of the file's image, in pixels
    /// Resolution of the file's image. If a file has none, Qt takes that of the screen.
    QSize dots_per_meter = {};

    qint64 Pixel_Count() const;

    /// An upper bound for the memory that the file and its decoded image take, in bytes.
    qint64 Memory() const;

    /// The pixels. Decodes the file; null if that fails.
    QImage Image() const;

    /// Writes everything that the other process needs. False if the device fails.
    bool Write_To(QIODevice* device) const;

    /// Reads it. Without pixels and file if it is not complete.
    static TEncoderInput Read_From(QIODevice* device);
};
