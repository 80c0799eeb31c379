#include "ThumbnailCache.h"

#include "MemoryPressureMonitor.h"
#include "MemoryPressureSource.h"
#include "PDFDocument.h"

#include <QRegularExpression>

#include <optional>

#include <gtest/gtest.h>

static QImage picture() {
    QImage image(2, 2, QImage::Format_RGB32);
    image.fill(Qt::red);
    return image;
}

TEST(ThumbnailCache, the301stThumbnailEvictsTheOldest) {
    ThumbnailCache::removeAll();
    for (int i = 0; i <= ThumbnailCache::maximumCount; ++i)
        ThumbnailCache::insert(QString::number(i), picture());
    EXPECT_EQ(ThumbnailCache::count(), 300);
    EXPECT_TRUE(ThumbnailCache::image(QStringLiteral("0")).isNull());
    EXPECT_FALSE(ThumbnailCache::image(QStringLiteral("300")).isNull());
}

TEST(ThumbnailCache, aDocumentsThumbnailsGoWithItAndNoOtherDocumentGetsThem) {
    ThumbnailCache::removeAll();
    std::optional<PDFDocument> document; // both live at the same address
    document.emplace();
    const QString first = ThumbnailCache::key(*document, 4);
    EXPECT_TRUE(QRegularExpression(QStringLiteral("^\\d+-4$")).match(first).hasMatch());
    EXPECT_EQ(ThumbnailCache::key(*document, 4), first);
    ThumbnailCache::insert(first, picture());
    ThumbnailCache::insert(ThumbnailCache::recentKey(QStringLiteral("/a.pdf")), picture());

    document.emplace();
    EXPECT_NE(ThumbnailCache::key(*document, 4), first);
    EXPECT_EQ(ThumbnailCache::count(), 1);
    EXPECT_FALSE(ThumbnailCache::image(QStringLiteral("recent-/a.pdf")).isNull());
}

TEST(ThumbnailCache, memoryPressureEmptiesIt) {
    auto source = std::make_unique<MemoryPressureSource>();
    MemoryPressureSource& pressure = *source;
    MemoryPressureMonitor monitor(std::move(source));
    ThumbnailCache::install(monitor);
    for (const auto level : {MemoryPressureSource::Level::Warning, MemoryPressureSource::Level::Critical}) {
        ThumbnailCache::insert(QStringLiteral("a"), picture());
        Q_EMIT pressure.memoryPressure(level);
        EXPECT_EQ(ThumbnailCache::count(), 0);
    }
}
