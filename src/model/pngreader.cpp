#include "src/model/pngreader.h"

#include "src/model/pageimage.h"

#include <QImage>

#include <algorithm>
#include <csetjmp>

namespace {

[[noreturn]] void Stop(png_structp png, png_const_charp)
{
    png_longjmp(png, 1);
}

void Ignore(png_structp, png_const_charp) {}

} // namespace

TPngReader::TPngReader(const QByteArray& bytes)
    : d_bytes(bytes)
    , d_png(png_create_read_struct(PNG_LIBPNG_VER_STRING, nullptr, Stop, Ignore))
{
    if (d_png)
        d_info = png_create_info_struct(d_png);
}

TPngReader::~TPngReader()
{
    png_destroy_read_struct(&d_png, &d_info, nullptr);
}

bool TPngReader::Is_Png(const QByteArray& bytes)
{
    return bytes.startsWith(TPageImage::Png_Signature);
}

// libpng reports a defect by a jump back into these functions, so they have no objects with
// destructors, and no local variables that change.

bool TPngReader::Read_Header()
{
    if (!d_info || setjmp(png_jmpbuf(d_png)) != 0) // NOLINT
        return false;
    png_set_read_fn(d_png, this, Read);
    png_read_info(d_png, d_info);
    d_size = QSize(static_cast<int>(png_get_image_width(d_png, d_info)),
                   static_cast<int>(png_get_image_height(d_png, d_info)));
    return true;
}

bool TPngReader::Read_Rows(QImage* pixels)
{
    if (setjmp(png_jmpbuf(d_png)) != 0) // NOLINT
        return false;
    if (pixels) {
        png_set_expand(d_png);
        png_set_strip_16(d_png);
        png_set_gray_to_rgb(d_png);
        png_set_add_alpha(d_png, 0xff, PNG_FILLER_AFTER);
    }
    const int pass_count = png_set_interlace_handling(d_png);
    png_read_update_info(d_png, d_info);
    for (int pass = 0; pass < pass_count; ++pass)
        Read_Pass(pass, pass_count, pixels);
    d_is_at_end = true;
    png_read_end(d_png, nullptr);
    return true;
}

/// Reads the rows of a pass. The last pass of an interlaced image completes every second row.
void TPngReader::Read_Pass(int pass, int pass_count, QImage* pixels)
{
    for (int y = 0; y < d_size.height(); ++y) {
        png_read_row(d_png, nullptr, pixels ? pixels->scanLine(y) : nullptr);
        if (pass == pass_count - 1)
            d_complete_rows = y + 1;
    }
}

void TPngReader::Read(png_structp png, png_bytep data, png_size_t length)
{
    auto* const reader = static_cast<TPngReader*>(png_get_io_ptr(png));
    const int wanted = static_cast<int>(length);
    const int available = static_cast<int>(reader->d_bytes.size()) - reader->d_position;
    if (wanted <= available) {
        std::copy_n(reader->d_bytes.constData() + reader->d_position, wanted, data);
        reader->d_position += wanted;
        return;
    }
    // Some programs omit the last checksum, and Qt accepts such files.
    static constexpr png_byte end_checksum[] = {0xae, 0x42, 0x60, 0x82};
    if (!reader->d_is_at_end || wanted != static_cast<int>(sizeof end_checksum))
        png_error(png, "");
    std::copy_n(end_checksum, wanted, data);
    reader->d_position += available;
}
