#pragma once

#include <QHash>
#include <QImage>
#include <QString>

#include <functional>
#include <list>

/// Keeps images by name, up to a number of them and up to a number of bytes; the one that was not asked for longest
/// goes first. One thread only.
class ImageCache {
public:
    ImageCache(int maximumCount, qint64 maximumByteCount);

    /// Null when there is none. Makes it the most recent one.
    [[nodiscard]] QImage image(const QString& key);

    /// Replaces an image of that name. A null image, and one that is larger than the whole cache, is not kept.
    void insert(const QString& key, const QImage& image);

    void removeIf(const std::function<bool(const QString& key)>& predicate);
    void removeAll();

    [[nodiscard]] int count() const { return static_cast<int>(m_entries.size()); }
    [[nodiscard]] qint64 byteCount() const { return m_byteCount; }

private:
    struct Entry {
        QString key;
        QImage image;
    };
    using Entries = std::list<Entry>;

    void remove(Entries::iterator entry);

    const int m_maximumCount;
    const qint64 m_maximumByteCount;
    Entries m_entries; // most recent first
    QHash<QString, Entries::iterator> m_entryOfKey;
    qint64 m_byteCount = 0;
};
