#include "src/safety/logtail.h"

#include "src/safety/database.h"

#include <QByteArray>
#include <QFile>
#include <QtEndian>

namespace {

// Layout of the file. Numbers are big-endian.
constexpr int header_size = 32;
constexpr int frame_header_size = 24;
/// In the header of a frame. The number is not zero if the frame ends a transaction.
constexpr int size_offset = 4;
constexpr int frame_salt_offset = 8;
constexpr int header_salt_offset = 16;
constexpr int salt_size = 4; ///< of each of two salts
constexpr int frame_checksum_offset = 16;
constexpr int header_checksum_offset = 24;
constexpr quint32 little_endian_magic = 0x377f0682; ///< checksums are sums of little-endian numbers

quint32 Number_At(const QByteArray& bytes, int offset)
{
    return qFromBigEndian<quint32>(bytes.constData() + offset);
}

/// The checksum of a frame continues that of the frame before.
class TChecksum
{
public:
    explicit TChecksum(bool is_little_endian)
        : d_is_little_endian(is_little_endian)
    {
    }

    void Add(const QByteArray& bytes, int begin, int end)
    {
        for (int offset = begin; offset < end; offset += 8) {
            d_first += Summand(bytes, offset) + d_second;
            d_second += Summand(bytes, offset + 4) + d_first;
        }
    }

    bool Is_At(const QByteArray& bytes, int offset) const
    {
        return Number_At(bytes, offset) == d_first && Number_At(bytes, offset + 4) == d_second;
    }

private:
    quint32 Summand(const QByteArray& bytes, int offset) const
    {
        return d_is_little_endian ? qFromLittleEndian<quint32>(bytes.constData() + offset)
                                  : Number_At(bytes, offset);
    }

    bool d_is_little_endian;
    quint32 d_first = 0;
    quint32 d_second = 0;
};

} // namespace

LogTail::TCommits LogTail::Count_Commits(const QString& database_path)
{
    TCommits commits;
    QFile file(database_path + QLatin1String("-wal"));
    if (!file.open(QIODevice::ReadOnly))
        return commits;
    const QByteArray header = file.read(header_size);
    if (header.size() < header_size)
        return commits;
    TChecksum checksum(Number_At(header, 0) == little_endian_magic);
    checksum.Add(header, 0, header_checksum_offset);
    const bool is_header_whole = checksum.Is_At(header, header_checksum_offset);
    const QByteArray salts = header.mid(header_salt_offset, 2 * salt_size);
    bool is_whole = is_header_whole;
    constexpr int frame_size = frame_header_size + TDatabase::Page_Size;
    // An incomplete frame is from a transaction that was not committed.
    for (QByteArray frame = file.read(frame_size); frame.size() == frame_size;
         frame = file.read(frame_size)) {
        const QByteArray frame_salts = frame.mid(frame_salt_offset, 2 * salt_size);
        checksum.Add(frame, 0, frame_salt_offset);
        checksum.Add(frame, frame_header_size, frame_size);
        is_whole = is_whole && frame_salts == salts && checksum.Is_At(frame, frame_checksum_offset);
        if (Number_At(frame, size_offset) == 0)
            continue;
        ++commits.all;
        // Frames that are older than the header have two other salts.
        const bool is_older = is_header_whole &&
                              frame_salts.left(salt_size) != salts.left(salt_size) &&
                              frame_salts.mid(salt_size) != salts.mid(salt_size);
        if (!is_whole && !is_older)
            ++commits.ignored;
    }
    return commits;
}
