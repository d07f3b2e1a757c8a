#include "core/bytesource.h"

#include "core/openfile.h"

#include <QFileDevice>

namespace {

/// In bytes. A file is searched in blocks.
constexpr qint64 search_size = 1024 * 1024;

} // namespace

qint64 TByteSource::Smallest_Open_File = 16 * 1024 * 1024;

TByteSource::TByteSource(const QByteArray& bytes)
    : d_bytes(bytes)
    , d_size(bytes.size())
{
}

TByteSource::TByteSource(std::shared_ptr<const TOpenFile> file, qint64 offset, qint64 length)
    : d_file(std::move(file))
    , d_offset(offset)
    , d_size(length)
{
}

TByteSource TByteSource::Of_File(const QString& path)
{
    const std::shared_ptr<const TOpenFile> file = TOpenFile::Open(path);
    if (!file)
        return TByteSource();
    const TByteSource content(file, 0, file->Size());
    return content.Size() < Smallest_Open_File ? TByteSource(content.Read()) : content;
}

bool TByteSource::Is_Lost() const
{
    return d_file && d_file->Is_Changed();
}

TByteSource TByteSource::Part(qint64 offset, qint64 length) const
{
    TByteSource part = *this;
    const qint64 begin = qBound<qint64>(0, offset, d_size);
    part.d_offset = d_offset + begin;
    part.d_size = qBound<qint64>(0, length, d_size - begin);
    return part;
}

QByteArray TByteSource::Read() const
{
    if (d_file)
        return d_file->Read(d_offset, d_size);
    if (d_size == d_bytes.size())
        return d_bytes;
    return QByteArray::fromRawData(d_bytes.constData() + d_offset, static_cast<int>(d_size));
}

QByteArray TByteSource::Read(qint64 offset, qint64 length) const
{
    const TByteSource part = Part(offset, length);
    if (part.d_file)
        return part.Read();
    return d_bytes.mid(static_cast<int>(part.d_offset), static_cast<int>(part.d_size));
}

bool TByteSource::Begins_With(const QByteArray& bytes) const
{
    return Read(0, bytes.size()) == bytes;
}

qint64 TByteSource::Index_Of(const QByteArray& what, qint64 from) const
{
    if (!d_file)
        return Read().indexOf(what, static_cast<int>(from));
    // The blocks overlap, so that each occurrence is within one of them.
    for (qint64 begin = qMax<qint64>(0, from); begin < d_size; begin += search_size) {
        const int found = Read(begin, search_size + what.size() - 1).indexOf(what);
        if (found >= 0)
            return begin + found;
    }
    return -1;
}

qint64 TByteSource::Last_Index_Of(const QByteArray& what) const
{
    if (!d_file)
        return Read().lastIndexOf(what);
    for (qint64 end = d_size; end > 0; end -= search_size) {
        const qint64 begin = qMax<qint64>(0, end - search_size);
        const int found = Read(begin, end - begin + what.size() - 1).lastIndexOf(what);
        if (found >= 0)
            return begin + found;
    }
    return -1;
}

bool TByteSource::Write_To(QIODevice* device) const
{
    auto* const file = qobject_cast<QFileDevice*>(device);
    if (d_file && file)
        return d_file->Copy_To(file, d_offset, d_size);
    const QByteArray bytes = Read();
    return bytes.size() == d_size && device->write(bytes) == d_size;
}
