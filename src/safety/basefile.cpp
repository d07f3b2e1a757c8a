#include "src/safety/basefile.h"

#include "core/conversion.h"
#include "core/safefile.h"
#include "src/format/projectlayout.h"

#include <QFile>

#include <algorithm>
#include <fcntl.h>
#include <linux/fs.h>
#include <sys/ioctl.h>
#include <sys/stat.h>
#include <unistd.h>
#include <utility>

namespace {

/// Gives an open file another name. Unlike its path, its descriptor cannot become another file.
bool Link(int descriptor, const QString& path)
{
    const QByteArray file = "/proc/self/fd/" + QByteArray::number(descriptor);
    return linkat(AT_FDCWD, file.constData(), AT_FDCWD, QFile::encodeName(path).constData(),
                  AT_SYMLINK_FOLLOW) == 0;
}

/// Creates a file that shares the blocks of another one on the disk.
bool Clone(int descriptor, const QString& path)
{
    const QByteArray name = QFile::encodeName(path);
    const int clone =
        open(name.constData(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, S_IRUSR | S_IWUSR);
    if (clone < 0)
        return false;
    const bool is_cloned = ioctl(clone, FICLONE, descriptor) == 0;
    close(clone);
    if (!is_cloned)
        unlink(name.constData());
    return is_cloned;
}

bool Has_Identity(const struct stat& state, const TFileIdentity& identity)
{
    return state.st_dev == identity.device && state.st_ino == identity.inode &&
           TFileStamp::Of(state) == identity.stamp;
}

bool Is_At(const QString& path, const TFileIdentity& identity)
{
    struct stat state = {};
    return stat(QFile::encodeName(path).constData(), &state) == 0 && Has_Identity(state, identity);
}

/// Whether a project file has a field exactly there. Moves to its content.
bool Has_Field(QFile* file, const TFilePart& content)
{
    if (!file->seek(content.offset - ProjectLayout::Integer_Size))
        return false;
    const QByteArray length = file->read(ProjectLayout::Integer_Size);
    return length.size() == ProjectLayout::Integer_Size &&
           Conversion::Integer(0, length) == content.length;
}

} // namespace

TBaseFile::TBaseFile(const QString& path, const TFileStamp& stamp, TFilePlaces places)
    : d_places(std::move(places))
{
    struct stat state = {};
    if (d_places.empty() || stat(QFile::encodeName(path).constData(), &state) != 0 ||
        TFileStamp::Of(state) != stamp)
        return;
    d_identity = {path, state.st_dev, state.st_ino, stamp};
    int index = 0;
    for (const TPagePlace& place : d_places) {
        d_pages.insert(place.revision, index);
        d_images.insert(place.image_id, index);
        ++index;
    }
}

const TPagePlace* TBaseFile::Find_Page(quint64 revision) const
{
    const auto found = d_pages.constFind(revision);
    return found == d_pages.constEnd() ? nullptr : &d_places[static_cast<std::size_t>(*found)];
}

const TPagePlace* TBaseFile::Find_Image(quint64 image_id) const
{
    const auto found = d_images.constFind(image_id);
    return found == d_images.constEnd() ? nullptr : &d_places[static_cast<std::size_t>(*found)];
}

void TBaseFile::Protect(const QString& path)
{
    d_protection.clear();
    // O_NONBLOCK: if the path is now that of a FIFO, do not wait for its writer.
    const int file =
        open(QFile::encodeName(d_identity.path).constData(), O_RDONLY | O_CLOEXEC | O_NONBLOCK);
    if (file < 0)
        return;
    struct stat state = {};
    // A clone comes second: creating it waits until the disk has the content of the file.
    if (fstat(file, &state) == 0 && Has_Identity(state, d_identity) &&
        (Link(file, path) || Clone(file, path))) {
        d_protection = path;
        d_protection_stamp = TFileStamp::Of(path);
    }
    close(file);
}

bool TBaseFile::Is_Intact() const
{
    if (Is_Protected())
        return TFileStamp::Of(d_protection) == d_protection_stamp;
    return Exists() && TFileStamp::Of(d_identity.path) == d_identity.stamp;
}

bool TBaseFile::Sync()
{
    d_is_synced = d_is_synced || !Exists() ||
                  TSafeFile::Sync(Is_Protected() ? d_protection : d_identity.path);
    return d_is_synced;
}

TBaseReader::TBaseReader(const TFileIdentity& identity, QStringList candidates)
    : d_size(identity.stamp.size)
    , d_candidates(std::move(candidates))
{
    // Of two versions with the same size, the unchanged file is the right one.
    std::stable_partition(d_candidates.begin(), d_candidates.end(),
                          [&identity](const QString& path) { return Is_At(path, identity); });
}

std::optional<QByteArray> TBaseReader::Read_Image(const TFilePart& part,
                                                  const QByteArray& ends) const
{
    return Read(part,
                [&ends](const QByteArray& image) { return TPagePlace::Ends_Of(image) == ends; });
}

std::optional<QByteArray> TBaseReader::Read_Items(const TFilePart& part,
                                                  const QByteArray& digest) const
{
    return Read(part, [&digest](const QByteArray& items) {
        return TPagePlace::Digest_Of(items) == digest;
    });
}

std::optional<QByteArray> TBaseReader::Read(const TFilePart& part, const TCheck& is_right) const
{
    for (const QString& path : d_candidates) {
        QFile file(path);
        if (!file.open(QIODevice::ReadOnly) || file.size() != d_size || !Has_Field(&file, part))
            continue;
        const QByteArray bytes = file.read(part.length);
        if (bytes.size() == part.length && is_right(bytes))
            return bytes;
    }
    return std::nullopt;
}
