#pragma once

#include "src/model/pageimage.h"

#include <QByteArray>
#include <QSize>
#include <QString>

/// Checks encoded images without messages of the decoders. A PNG image is never decoded as a whole.
namespace ImageCheck {

/// Size of an image in pixels, read from its header; (0, 0) if that is not possible.
QSize Size(const TByteSource& image);

/// Describes why an image cannot be decoded to its end; empty if it can. Names the first damaged
/// row of a PNG image.
QString Fault(const QByteArray& bytes);

/// The same for a TIFF image that Qt has decoded: Qt ignores the errors of libtiff.
/// @param messages  of libtiff while Qt decoded the image.
QString Tiff_Fault(const QByteArray& messages);

/// What remains of a damaged image.
struct TRest
{
    TPageImage image;  ///< null if nothing can be decoded. The lost rows are white.
    int lost_rows = 0; ///< rows that are not complete; only of a PNG image
    int rows = 0;
};

/// Decodes the part of a damaged image before its first defect.
TRest Rest(const QByteArray& bytes);

} // namespace ImageCheck
