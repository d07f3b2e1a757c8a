#pragma once

#include <QString>

struct stat;

/// Size and modification time of a file, which differ after another program has changed it.
///
/// Inode and device are left out: removable disks may get new ones at any time.
struct TFileStamp
{
    qint64 size = -1;   ///< in bytes; negative if the file does not exist
    qint64 seconds = 0; ///< of the modification time
    qint64 nanoseconds = 0;

    /// The stamp of the file at a path. Symbolic links are followed.
    static TFileStamp Of(const QString& path);
    static TFileStamp Of(const struct stat& state);

    bool Exists() const { return size >= 0; }
};

inline bool operator==(const TFileStamp& first, const TFileStamp& second)
{
    return first.size == second.size && first.seconds == second.seconds &&
           first.nanoseconds == second.nanoseconds;
}

inline bool operator!=(const TFileStamp& first, const TFileStamp& second)
{
    return !(first == second);
}
