#include "src/format/projectfile.h"

#include "core/conversion.h"
#include "core/safefile.h"

#include <QFile>
#include <QIODevice>

#include <algorithm>
#include <optional>

TProjectWriter::TProjectWriter()
{
    Write_Integer(TProjectReader::Magic);
}

void TProjectWriter::Write_Integer(int value)
{
    QByteArray bytes(sizeof(value), '\0');
    Conversion::Set_Integer(0, value, &bytes);
    Append(bytes);
}

void TProjectWriter::Write_Text(const QString& text)
{
    Write_Bytes(text.toLatin1());
}

void TProjectWriter::Write_Bytes(const QByteArray& bytes)
{
    Write_Integer(bytes.size());
    Append(bytes);
}

void TProjectWriter::Write_Image(const TPageImage& image, TImageBytes which)
{
    const QByteArray bytes = which == TImageBytes::As_Png ? image.Png() : image.Source_Bytes();
    Write_Integer(bytes.size());
    Append(bytes, image);
}

void TProjectWriter::Append(const QByteArray& bytes, const TPageImage& owner)
{
    d_pieces.push_back({bytes, owner});
    d_size += bytes.size();
}

qint64 TProjectWriter::Size() const
{
    return d_size;
}

bool TProjectWriter::Write_To(QIODevice* device) const
{
    return std::all_of(d_pieces.cbegin(), d_pieces.cend(), [device](const TPiece& piece) {
        return device->write(piece.bytes) == piece.bytes.size();
    });
}

TProjectReader::TProjectReader(const QByteArray& bytes)
    : d_bytes(bytes)
{
}

bool TProjectReader::Read_Magic()
{
    constexpr int least_size = 8;
    return d_bytes.size() >= least_size && Read_Integer() == Magic;
}

int TProjectReader::Read_Integer()
{
    if (!d_valid)
        return 0;
    const int value = Conversion::Integer(static_cast<unsigned int>(d_position), d_bytes);
    d_position += static_cast<qint64>(sizeof(value));
    return value;
}

QString TProjectReader::Read_Text()
{
    const QByteArray field = Read_Bytes();
    return QString::fromLatin1(field.constData(),
                               static_cast<int>(qstrnlen(field.constData(), field.size())));
}

QByteArray TProjectReader::Read_Bytes()
{
    const TField field = Take_Field();
    return d_bytes.mid(field.offset, field.length);
}

TPageImage TProjectReader::Read_Image()
{
    const TField field = Take_Field();
    return TPageImage::From_Part(d_bytes, field.offset, field.length);
}

TProjectReader::TField TProjectReader::Take_Field()
{
    const int length = Read_Integer();
    d_valid = d_valid && length >= 0;
    if (!d_valid)
        return {0, 0};
    // The position cannot be past the end here: the length itself was read just before it.
    const int offset = static_cast<int>(d_position);
    d_position += length;
    return {offset, std::min(length, d_bytes.size() - offset)};
}

namespace {

constexpr int integer_size = static_cast<int>(sizeof(int));

/// Reads an integer at a device's position; empty when there is none.
std::optional<int> Next_Integer(QIODevice* device)
{
    const QByteArray bytes = device->read(integer_size);
    if (bytes.size() != integer_size)
        return std::nullopt;
    return Conversion::Integer(0, bytes);
}

/// Steps over fields; false when one of them does not lie within the device.
bool Skip_Fields(QIODevice* device, qint64 count)
{
    for (qint64 field = 0; field < count; ++field) {
        const std::optional<int> length = Next_Integer(device);
        if (!length || *length < 0 || *length > device->size() - device->pos() ||
            !device->seek(device->pos() + *length))
            return false;
    }
    return true;
}

} // namespace

bool ProjectFile::Commit(const TProjectWriter& project, TSafeFile* target)
{
    QFile file(target->Path_To_Write());
    if (!file.open(QIODevice::WriteOnly) || !project.Write_To(&file) || !file.flush())
        return false;
    file.close();
    return target->Commit([&project](const QString& path) {
        return TSafeFile::Is_Complete(path, project.Size(), QByteArray());
    });
}

bool ProjectFile::Is_Whole(const QString& path)
{
    constexpr int header_fields = 3;
    constexpr int page_fields = 3;
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly) || Next_Integer(&file) != TProjectReader::Magic ||
        !Next_Integer(&file) || !Skip_Fields(&file, header_fields))
        return false;
    const std::optional<int> pages = Next_Integer(&file);
    return pages && Skip_Fields(&file, qint64{page_fields} * *pages) && file.atEnd();
}
