#pragma once

#include "core/bytesource.h"

#include <QByteArray>
#include <QCryptographicHash>

#include <vector>

/// A part of a file, in bytes.
struct TFilePart
{
    qint64 offset = -1;
    qint64 length = 0;
};

/// Where a project file has one page. The parts are the contents of the fields, without their
/// lengths.
struct TPagePlace
{
    /// Number of bytes at the beginning and at the end of an image in image_ends.
    static constexpr int End_Length = 32;

    quint64 revision = 0;    ///< of the page when the file was read or written
    quint64 image_id = 0;    ///< TPageImage::Id()
    TFilePart image;         ///< empty for a page without an image
    TFilePart items;         ///< the document of the labels
    QByteArray image_ends;   ///< first and last bytes of the image; all bytes of a tiny one
    QByteArray items_digest; ///< SHA-1 of the document of the labels

    /// The value of image_ends for an image.
    static QByteArray Ends_Of(const TByteSource& image)
    {
        return image.Size() <= 2 * End_Length
                   ? image.Read(0, image.Size())
                   : image.Read(0, End_Length) + image.Read(image.Size() - End_Length, End_Length);
    }

    /// The value of items_digest for a document of labels.
    static QByteArray Digest_Of(const QByteArray& items)
    {
        return QCryptographicHash::hash(items, QCryptographicHash::Sha1);
    }
};

/// The places of all pages, in the order of the file.
using TFilePlaces = std::vector<TPagePlace>;
