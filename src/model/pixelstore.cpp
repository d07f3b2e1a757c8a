#include "src/model/pixelstore.h"

TPixelStore& TPixelStore::Shared()
{
    static TPixelStore store;
    return store;
}

QImage TPixelStore::Reduced(const QImage& image, const QSize& size)
{
    const TKey key(nullptr, image.cacheKey());
    QImage reduced = Find(key);
    if (reduced.size() != size) {
        reduced = image.scaled(size, Qt::IgnoreAspectRatio, Qt::SmoothTransformation);
        Insert(key, reduced);
    }
    return reduced;
}

QImage TPixelStore::Find(const TKey& key)
{
    const auto entry = d_iterators.constFind(key);
    if (entry == d_iterators.constEnd())
        return QImage();
    d_entries.splice(d_entries.begin(), d_entries, entry.value());
    return d_entries.front().second;
}

void TPixelStore::Insert(const TKey& key, const QImage& pixels)
{
    Remove(key);
    d_entries.emplace_front(key, pixels);
    d_iterators.insert(key, d_entries.begin());
    d_bytes += pixels.sizeInBytes();
    while (d_bytes > Limit && d_entries.size() > 1)
        Remove(d_entries.back().first);
}

void TPixelStore::Remove(const TKey& key)
{
    const auto entry = d_iterators.constFind(key);
    if (entry == d_iterators.constEnd())
        return;
    d_bytes -= entry.value()->second.sizeInBytes();
    d_entries.erase(entry.value());
    d_iterators.erase(entry);
}
