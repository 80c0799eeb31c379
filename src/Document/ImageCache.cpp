#include "ImageCache.h"

ImageCache::ImageCache(int maximumCount, qint64 maximumByteCount)
    : m_maximumCount(maximumCount), m_maximumByteCount(maximumByteCount) {}

QImage ImageCache::image(const QString& key) {
    const auto found = m_entryOfKey.constFind(key);
    if (found == m_entryOfKey.constEnd())
        return {};
    m_entries.splice(m_entries.begin(), m_entries, *found);
    return (*found)->image;
}

void ImageCache::insert(const QString& key, const QImage& image) {
    if (const auto found = m_entryOfKey.constFind(key); found != m_entryOfKey.constEnd())
        remove(*found);
    if (image.isNull() || image.sizeInBytes() > m_maximumByteCount)
        return;
    m_entries.push_front({key, image});
    m_entryOfKey.insert(key, m_entries.begin());
    m_byteCount += image.sizeInBytes();
    while (count() > m_maximumCount || m_byteCount > m_maximumByteCount)
        remove(std::prev(m_entries.end()));
}

void ImageCache::removeIf(const std::function<bool(const QString&)>& predicate) {
    for (auto entry = m_entries.begin(); entry != m_entries.end();) {
        const auto next = std::next(entry);
        if (predicate(entry->key))
            remove(entry);
        entry = next;
    }
}

void ImageCache::removeAll() {
    m_entries.clear();
    m_entryOfKey.clear();
    m_byteCount = 0;
}

void ImageCache::remove(Entries::iterator entry) {
    m_byteCount -= entry->image.sizeInBytes();
    m_entryOfKey.remove(entry->key);
    m_entries.erase(entry);
}
