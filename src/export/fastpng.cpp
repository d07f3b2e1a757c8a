#include "src/export/fastpng.h"

#include <QImage>

#include <algorithm>
#include <csetjmp>
#include <png.h>
#include <zlib.h>

namespace {

/// Settings of libpng and zlib.
struct TSettings
{
    int filter;
    int strategy;
};

constexpr int level = 2; // a higher level takes too much time for drawings
constexpr TSettings for_scans{PNG_FILTER_UP, Z_RLE};
constexpr TSettings for_drawings{PNG_FILTER_NONE, Z_DEFAULT_STRATEGY};

// The sample: bands of rows.
constexpr int band_height = 8;
constexpr int band_distance = 256; // between their first rows

void Append(png_structp png, png_bytep data, png_size_t length)
{
    static_cast<QByteArray*>(png_get_io_ptr(png))
        ->append(reinterpret_cast<const char*>(data), static_cast<int>(length));
}

/// Writes a picture. libpng reports errors by a jump back into this function, so it has no objects
/// with destructors.
/// @param picture  of 24 bits a pixel.
bool Write(const QImage& picture, const TSettings& settings, png_structp png, png_infop info)
{
    if (setjmp(png_jmpbuf(png)) != 0) // NOLINT
        return false;
    png_set_compression_level(png, level);
    png_set_compression_strategy(png, settings.strategy);
    png_set_filter(png, PNG_FILTER_TYPE_BASE, settings.filter);
    png_set_IHDR(png, info, static_cast<png_uint_32>(picture.width()),
                 static_cast<png_uint_32>(picture.height()), 8, PNG_COLOR_TYPE_RGB,
                 PNG_INTERLACE_NONE, PNG_COMPRESSION_TYPE_DEFAULT, PNG_FILTER_TYPE_DEFAULT);
    png_set_pHYs(png, info, static_cast<png_uint_32>(picture.dotsPerMeterX()),
                 static_cast<png_uint_32>(picture.dotsPerMeterY()), PNG_RESOLUTION_METER);
    png_write_info(png, info);
    for (int y = 0; y < picture.height(); ++y)
        png_write_row(png, picture.constScanLine(y));
    png_write_end(png, info);
    return true;
}

/// Encodes a picture of 24 bits a pixel.
QByteArray Encode_With(const TSettings& settings, const QImage& picture)
{
    QByteArray bytes;
    png_structp png = png_create_write_struct(PNG_LIBPNG_VER_STRING, nullptr, nullptr, nullptr);
    png_infop info = png ? png_create_info_struct(png) : nullptr;
    if (info) {
        png_set_write_fn(png, &bytes, Append, nullptr);
        if (!Write(picture, settings, png, info))
            bytes.clear();
    }
    png_destroy_write_struct(&png, &info);
    return bytes;
}

/// Some rows of a picture, or all if it has few.
QImage Sample(const QImage& picture)
{
    const int bands = picture.height() / band_distance;
    if (bands == 0)
        return picture;
    QImage sample(picture.width(), bands * band_height, picture.format());
    for (int y = 0; y < sample.height(); ++y) {
        const int row = y / band_height * band_distance + y % band_height;
        std::copy_n(picture.constScanLine(row), picture.bytesPerLine(), sample.scanLine(y));
    }
    return sample;
}

} // namespace

QByteArray FastPng::Encode(const QImage& picture)
{
    if (picture.isNull())
        return QByteArray();
    const QImage pixels = picture.convertToFormat(QImage::Format_RGB888);
    const QImage sample = Sample(pixels);
    const bool is_scan =
        Encode_With(for_scans, sample).size() < Encode_With(for_drawings, sample).size();
    return Encode_With(is_scan ? for_scans : for_drawings, pixels);
}
