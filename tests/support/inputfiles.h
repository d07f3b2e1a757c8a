#pragma once

#include <QByteArray>
#include <QImage>
#include <QVector>

/// Makes files that Qt cannot write: GIFs, photos with an orientation, TIFFs with several pages,
/// and PDFs with any page box.
namespace Support {

/// An image as JPEG with EXIF data.
/// @param orientation  1 to 8, as in EXIF: 6 means "rotate by 90 degrees clockwise to view".
QByteArray Exif_Jpeg(const QImage& image, int orientation);

/// Images as the pages of an uncompressed TIFF.
QByteArray Tiff(const QVector<QImage>& images, int orientation = 1);

/// A GIF of one colour.
QByteArray Gif(int width, int height);

/// A PDF with a page for each media box: "0 0 100 50", in points.
/// @param content  drawing operators, the same for all pages.
QByteArray Pdf(const QVector<QByteArray>& boxes, const QByteArray& content = "10 20 30 15 re f");

} // namespace Support
