#include "src/safety/basefile.h"

#include "core/safefile.h"

#include <QFile>

#include <sys/stat.h>
#include <unistd.h>
#include <utility>

TBaseFile::TBaseFile(const QString& path, const TFileStamp& stamp, TFilePlaces places)
    : d_places(std::move(places))
{
    struct stat state = {};
    if (d_places.empty() || stat(QFile::encodeName(path).constData(), &state) != 0 ||
        TFileStamp::Of(path) != stamp)
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
    if (!Is_Intact())
        *this = TBaseFile();
    else if (link(QFile::encodeName(d_identity.path).constData(),
                  QFile::encodeName(path).constData()) == 0)
        d_protection = path;
}

bool TBaseFile::Is_Intact() const
{
    return Exists() &&
           TFileStamp::Of(Is_Protected() ? d_protection : d_identity.path) == d_identity.stamp;
}

bool TBaseFile::Sync()
{
    d_is_synced = d_is_synced || TSafeFile::Sync(Is_Protected() ? d_protection : d_identity.path);
    return d_is_synced;
}

TBaseReader::TBaseReader(TFileIdentity identity, QStringList candidates)
    : d_identity(std::move(identity))
    , d_candidates(std::move(candidates))
{
}

std::optional<QByteArray> TBaseReader::Read_Image(const TFilePart& part,
                                                  const QByteArray& ends) const
{
    const std::optional<QByteArray> bytes = Read(part);
    return bytes && TPagePlace::Ends_Of(*bytes) == ends ? bytes : std::nullopt;
}

std::optional<QByteArray> TBaseReader::Read_Items(const TFilePart& part) const
{
    return Read(part);
}

std::optional<QByteArray> TBaseReader::Read(const TFilePart& part) const
{
    for (const QString& path : d_candidates) {
        QFile file(path);
        if (!file.open(QIODevice::ReadOnly) || file.size() != d_identity.stamp.size ||
            !file.seek(part.offset))
            continue;
        const QByteArray bytes = file.read(part.length);
        if (bytes.size() == part.length)
            return bytes;
    }
    return std::nullopt;
}
