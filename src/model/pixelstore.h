#pragma once

#include <QHash>
#include <QImage>
#include <QSize>

#include <list>
#include <utility>

/// A cache of decoded images and of smaller versions of them. Drops the least recently used ones to
/// stay within a limit. The whole process shares one. GUI thread only.
class TPixelStore
{
public:
    static TPixelStore& Shared();

    /// Limit in bytes of pixels. The most recently used image stays even if it is larger.
    static constexpr qint64 Limit = 256LL * 1024 * 1024;

    /// The pixels of an object, which count as used from now on; null if they are not cached.
    QImage Find(const void* owner) { return Find(TKey(owner, 0)); }
    /// Caches the pixels of an object in place of earlier ones.
    void Insert(const void* owner, const QImage& pixels) { Insert(TKey(owner, 0), pixels); }
    void Remove(const void* owner) { Remove(TKey(owner, 0)); }

    /// Averages the pixels of an image to make it smaller. Caches one size of each image.
    QImage Reduced(const QImage& image, const QSize& size);

    /// Total size of all cached pixels.
    qint64 Bytes() const { return d_bytes; }

private:
    /// The owner of pixels or, for a smaller version, null and the cache key of the image.
    using TKey = std::pair<const void*, qint64>;
    /// The most recently used entry is the first.
    using TEntries = std::list<std::pair<TKey, QImage>>;

    QImage Find(const TKey& key);
    void Insert(const TKey& key, const QImage& pixels);
    void Remove(const TKey& key);

    TEntries d_entries;
    QHash<TKey, TEntries::iterator> d_iterators;
    qint64 d_bytes = 0;
};
