#include "ThumbnailCache.h"

#include "ImageCache.h"
#include "MemoryPressureMonitor.h"
#include "PDFDocument.h"

static ImageCache& cache() {
    static ImageCache images(ThumbnailCache::maximumCount, ThumbnailCache::maximumByteCount);
    return images;
}

/// A number for as long as the document lives. Addresses won't do: a new document may get that of an old one, and with
/// it the pictures of its pages.
static quint64 documentID(const PDFDocument& document) {
    static QHash<const PDFDocument*, quint64> ids;
    static quint64 lastID = 0;
    const auto found = ids.constFind(&document);
    if (found != ids.constEnd())
        return *found;
    const quint64 id = ++lastID;
    ids.insert(&document, id);
    QObject::connect(&document, &QObject::destroyed, [address = &document, id] {
        ids.remove(address);
        const QString prefix = QString::number(id) + u'-';
        cache().removeIf([&prefix](const QString& key) { return key.startsWith(prefix); });
    });
    return id;
}

QString ThumbnailCache::key(const PDFDocument& document, int page) {
    return QString::number(documentID(document)) + u'-' + QString::number(page);
}

QString ThumbnailCache::recentKey(const QString& path) {
    return QStringLiteral("recent-") + path;
}

QImage ThumbnailCache::image(const QString& key) {
    return cache().image(key);
}

void ThumbnailCache::insert(const QString& key, const QImage& image) {
    cache().insert(key, image);
}

void ThumbnailCache::removeAll() {
    cache().removeAll();
}

int ThumbnailCache::count() {
    return cache().count();
}

void ThumbnailCache::install(MemoryPressureMonitor& monitor) {
    monitor.addHandler([] { removeAll(); });
}
