#include "RecentThumbnailLoader.h"

#include "FolderTest.h"
#include "ImageCache.h"
#include "MemoryPressureMonitor.h"
#include "MemoryPressureSource.h"
#include "PDFDocument.h"
#include "PdfFixtures.h"
#include "ThumbnailCache.h"

#include <QTest>
#include <QThread>

#include <sys/stat.h>

#include <gtest/gtest.h>

namespace {

class RecentThumbnailLoaderTest : public FolderTest {
protected:
    /// What the loader gives for the file.
    QImage loaded(const QUrl& url) {
        RecentThumbnailLoader loader;
        QObject receiver;
        std::optional<QImage> result;
        loader.load(url, &receiver, [&result](const QImage& image) {
            EXPECT_EQ(QThread::currentThread(), QCoreApplication::instance()->thread());
            result = image;
        });
        EXPECT_FALSE(result) << "before the event loop was reached";
        EXPECT_TRUE(QTest::qWaitFor([&result] { return result.has_value(); }, 60'000));
        return result.value_or(QImage());
    }

    /// A page whose lower left quarter is black.
    static QByteArray pageFile(QSizeF size, const QByteArray& rotation = "0") {
        PdfFixture fixture;
        fixture.addPageWithContent("0 g 0 0 " + QByteArray::number(size.width() / 2) + ' ' +
                                       QByteArray::number(size.height() / 2) + " re f",
                                   "<< >>", size);
        fixture.setPageKey(0, "/Rotate", rotation);
        fixture.addPage({QStringLiteral("Second page")});
        return fixture.bytes();
    }
};

TEST_F(RecentThumbnailLoaderTest, showsTheFirstPage280PixelsHigh) {
    const QImage letter = loaded(makeFile("Größe.pdf", pageFile({612, 792})));
    ASSERT_EQ(letter.size(), QSize(216, 280));
    EXPECT_EQ(letter.pixelColor(50, 210), QColor(Qt::black));
    EXPECT_EQ(letter.pixelColor(50, 70), QColor(Qt::white));
    // Turned clockwise, the lower left quarter comes to the upper left.
    const QImage turned = loaded(makeFile("turned.pdf", pageFile({280, 560}, "90")));
    ASSERT_EQ(turned.size(), QSize(560, 280));
    EXPECT_EQ(turned.pixelColor(100, 70), QColor(Qt::black));
    EXPECT_EQ(loaded(makeFile("strip.pdf", pageFile({10, 10'000}))).size(), QSize(1, 280));
}

TEST_F(RecentThumbnailLoaderTest, aFileThatIsNoReadablePDFGivesNone) {
    PdfFixture locked;
    locked.addPage({QStringLiteral("Secret")});
    PdfFixture empty;
    ASSERT_EQ(mkfifo(qPrintable(path("pipe.pdf")), 0600), 0);
    const QUrl huge = makeFile("huge.pdf", pageFile({612, 792}));
    ASSERT_TRUE(QFile::resize(huge.toLocalFile(), RecentThumbnailLoader::maximumFileSize + 1));
    const QUrl bad[] = {
        url(""),
        url("pipe.pdf"),
        huge,
        QUrl(QStringLiteral("https://example.org/a.pdf")),
        makeFile("text.pdf", "no PDF"),
        makeFile("locked.pdf", locked.encrypted("user", "owner", PdfFixture::Encryption::aes256)),
        makeFile("no pages.pdf", empty.bytes()),
        makeFile("ribbon.pdf", pageFile({10'000, 10})),
    };
    for (const QUrl& each : bad)
        EXPECT_TRUE(loaded(each).isNull()) << each.toString().toStdString();
}

TEST_F(RecentThumbnailLoaderTest, eachGetsItsOwnPictureUnlessItOrTheLoaderIsGone) {
    auto loader = std::make_unique<RecentThumbnailLoader>();
    QObject lasting;
    auto closing = std::make_unique<QObject>();
    QHash<int, int> widthOfFile;
    constexpr int count = 12;
    const auto load = [&](int i) {
        const QUrl file = makeFile(qPrintable(QString::number(i)), pageFile({100.0 + 10 * i, 280}));
        loader->load(file, i % 2 == 0 ? &lasting : closing.get(),
                     [&widthOfFile, i](const QImage& image) { widthOfFile[i] = image.width(); });
    };
    for (int i = 0; i < count; ++i)
        load(i);
    closing.reset();
    load(count); // behind the others in the queue
    ASSERT_TRUE(QTest::qWaitFor([&] { return widthOfFile.contains(count); }, 60'000));
    EXPECT_TRUE(QTest::qWaitFor([&] { return widthOfFile.size() == count / 2 + 1; }, 60'000));
    for (auto each = widthOfFile.begin(); each != widthOfFile.end(); ++each)
        EXPECT_EQ(each.value(), 100 + 10 * each.key());

    load(0);
    widthOfFile.clear();
    loader.reset();
    QCoreApplication::processEvents();
    EXPECT_TRUE(widthOfFile.isEmpty());
    EXPECT_TRUE(RecentThumbnailLoader::thumbnail(pageFile({612, 792}), std::atomic<bool>(true)).isNull());
}

QImage picture(int side = 2) {
    return {side, side, QImage::Format_RGB32};
}

TEST(ImageCache, imagesMakeRoomForOthersByTheirSize) {
    const QString a = QStringLiteral("1-a"), b = QStringLiteral("1-b"), c = QStringLiteral("2-c");
    ImageCache cache(100, 1000);
    cache.insert(a, picture(10)); // 400 bytes
    cache.insert(b, picture(10));
    cache.insert(a, picture(5)); // replaces: 100 bytes
    EXPECT_EQ(cache.byteCount(), 500);
    cache.insert(c, picture(15)); // 900 bytes: b has to go, a fits beside it
    EXPECT_EQ(cache.byteCount(), 1000);
    EXPECT_TRUE(cache.image(b).isNull());
    cache.insert(c, picture(20)); // larger than all: not kept, and no old picture in its place
    EXPECT_TRUE(cache.image(c).isNull());
    cache.insert(a, QImage());
    EXPECT_EQ(cache.byteCount(), 0);
    for (const QString& key : {a, c, b})
        cache.insert(key, picture(5));
    cache.removeIf([](const QString& key) { return key.startsWith(QStringLiteral("1-")); });
    EXPECT_FALSE(cache.image(c).isNull());
    EXPECT_EQ(cache.byteCount(), 100);
    cache.removeAll();
    EXPECT_EQ(cache.byteCount(), 0);
}

TEST(ThumbnailCache, the301stThumbnailEvictsTheOneThatWasUsedLongestAgo) {
    ThumbnailCache::removeAll();
    for (int i = 0; i <= ThumbnailCache::maximumCount; ++i) {
        ThumbnailCache::insert(QString::number(i), picture());
        EXPECT_FALSE(ThumbnailCache::image(QStringLiteral("0")).isNull());
    }
    EXPECT_EQ(ThumbnailCache::count(), 300);
    EXPECT_TRUE(ThumbnailCache::image(QStringLiteral("1")).isNull());
}

TEST(ThumbnailCache, aDocumentsThumbnailsGoWithItAndNoOtherDocumentGetsThem) {
    ThumbnailCache::removeAll();
    std::optional<PDFDocument> document; // both live at the same address
    document.emplace();
    const QString first = ThumbnailCache::key(*document, 4);
    EXPECT_EQ(ThumbnailCache::key(*document, 4), first);
    ThumbnailCache::insert(first, picture());
    ThumbnailCache::insert(ThumbnailCache::recentKey(QStringLiteral("/a.pdf")), picture());

    document.emplace();
    EXPECT_NE(ThumbnailCache::key(*document, 4), first);
    EXPECT_EQ(ThumbnailCache::count(), 1);
    EXPECT_FALSE(ThumbnailCache::image(QStringLiteral("recent-/a.pdf")).isNull());

    auto source = std::make_unique<MemoryPressureSource>();
    MemoryPressureSource& pressure = *source;
    MemoryPressureMonitor monitor(std::move(source));
    ThumbnailCache::install(monitor);
    Q_EMIT pressure.memoryPressure(MemoryPressureSource::Level::Warning);
    EXPECT_EQ(ThumbnailCache::count(), 0);
}

} // namespace
