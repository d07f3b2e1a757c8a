#pragma once

#include "src/model/pageimage.h"

#include <QByteArray>
#include <QSize>

/// A page image as a web page embeds it: in the stored format if browsers can read it, otherwise as
/// PNG.
class TEmbeddedImage
{
public:
    /// Reads the header only, unless the image has to be encoded.
    explicit TEmbeddedImage(const TPageImage& image);

    /// Size of the page image in pixels; empty when there is none or it cannot be read.
    QSize Size() const { return d_size; }

    /// The parts of a data URL, apart because joining them would copy the image once more.
    struct TDataUrl
    {
        QByteArray begin;
        QByteArray base64;
    };
    /// The image as a data URL.
    /// @param max_width  a wider image is scaled down to this many pixels; 0 for no limit.
    TDataUrl Data_Url(int max_width) const;

private:
    TPageImage d_image;
    QByteArray d_stored_format; ///< empty if browsers cannot read it
    QSize d_size;
};
