#include "RecentThumbnailLoader.h"

#include "PdfFixtures.h"

#include <QFile>
#include <QTemporaryDir>
#include <QTest>
#include <QThread>

#include <sys/stat.h>

#include <gtest/gtest.h>

namespace {

class RecentThumbnailLoaderTest : public testing::Test {
protected:
    QUrl store(const QString& name, const QByteArray& bytes) {
        QFile file(m_folder.filePath(name));
        EXPECT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(bytes);
        return QUrl::fromLocalFile(file.fileName());
    }

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

    QTemporaryDir m_folder;
};

TEST_F(RecentThumbnailLoaderTest, showsTheFirstPage280PixelsHigh) {
    const QImage letter = loaded(store(QStringLiteral("Größe.pdf"), pageFile({612, 792})));
    ASSERT_EQ(letter.size(), QSize(216, 280));
    EXPECT_EQ(letter.pixelColor(50, 210), QColor(Qt::black));
    EXPECT_EQ(letter.pixelColor(50, 70), QColor(Qt::white));
    EXPECT_EQ(letter.pixelColor(160, 210), QColor(Qt::white));

    // Turned clockwise, the lower left quarter comes to the upper left.
    const QImage turned = loaded(store(QStringLiteral("turned.pdf"), pageFile({280, 560}, "90")));
    ASSERT_EQ(turned.size(), QSize(560, 280));
    EXPECT_EQ(turned.pixelColor(100, 70), QColor(Qt::black));
    EXPECT_EQ(turned.pixelColor(100, 210), QColor(Qt::white));

    EXPECT_EQ(loaded(store(QStringLiteral("strip.pdf"), pageFile({10, 10'000}))).size(), QSize(1, 280));
}

TEST_F(RecentThumbnailLoaderTest, aFileThatIsNoReadablePDFGivesNone) {
    PdfFixture locked;
    locked.addPage({QStringLiteral("Secret")});
    PdfFixture empty;
    const QString pipe = m_folder.filePath(QStringLiteral("pipe.pdf"));
    ASSERT_EQ(mkfifo(QFile::encodeName(pipe).constData(), 0600), 0);
    QFile huge(m_folder.filePath(QStringLiteral("huge.pdf")));
    ASSERT_TRUE(huge.open(QIODevice::WriteOnly));
    huge.write(pageFile({612, 792}));
    ASSERT_TRUE(huge.resize(RecentThumbnailLoader::maximumFileSize + 1));

    const QUrl bad[] = {
        QUrl::fromLocalFile(m_folder.filePath(QStringLiteral("missing.pdf"))),
        QUrl::fromLocalFile(m_folder.path()),
        QUrl::fromLocalFile(pipe),
        QUrl::fromLocalFile(huge.fileName()),
        QUrl(QStringLiteral("https://example.org/a.pdf")),
        store(QStringLiteral("text.pdf"), "no PDF"),
        store(QStringLiteral("nothing.pdf"), {}),
        store(QStringLiteral("locked.pdf"), locked.encrypted("user", "owner", PdfFixture::Encryption::aes256)),
        store(QStringLiteral("no pages.pdf"), empty.bytes()),
        store(QStringLiteral("ribbon.pdf"), pageFile({10'000, 10})),
    };
    for (const QUrl& url : bad)
        EXPECT_TRUE(loaded(url).isNull()) << url.toString().toStdString();
}

TEST_F(RecentThumbnailLoaderTest, eachGetsItsOwnPictureUnlessItOrTheLoaderIsGone) {
    auto loader = std::make_unique<RecentThumbnailLoader>();
    QObject lasting;
    auto closing = std::make_unique<QObject>();
    QHash<int, int> widthOfFile;
    constexpr int count = 12;
    const auto load = [&](int i) {
        const QUrl url = store(QString::number(i), pageFile({100.0 + 10 * i, 280}));
        loader->load(url, i % 2 == 0 ? &lasting : closing.get(),
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

} // namespace
