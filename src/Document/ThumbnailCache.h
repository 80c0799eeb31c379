#pragma once

#include <QImage>
#include <QString>

class MemoryPressureMonitor;
class PDFDocument;

/// The thumbnails of pages and of recent files, in memory, for the whole process. Every operation that changes, moves
/// or removes pages of an open document empties it, since its keys hold page indices. Main thread only.
namespace ThumbnailCache {

inline constexpr int maximumCount = 300;
inline constexpr qint64 maximumByteCount = qint64(40) * 1024 * 1024;

/// The key of a page's thumbnail: a number that no other document of this process has or had, "-", and the zero-based
/// page index. A document's thumbnails go with it.
[[nodiscard]] QString key(const PDFDocument& document, int page);
/// The key of the thumbnail of a recent file.
[[nodiscard]] QString recentKey(const QString& path);

/// Null when it isn't cached.
[[nodiscard]] QImage image(const QString& key);
/// The least recently used thumbnails make room when it is full. A null image is not kept.
void insert(const QString& key, const QImage& image);
void removeAll();
[[nodiscard]] int count();

/// Empties the cache whenever memory runs short.
void install(MemoryPressureMonitor& monitor);

} // namespace ThumbnailCache
