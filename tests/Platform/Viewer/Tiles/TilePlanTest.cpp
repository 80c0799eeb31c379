#include "TilePlan.h"

#include "PDFDocument.h"
#include "PDFPage.h"
#include "PageTiles.h"
#include "ShownView.h"

#include <QSignalSpy>
#include <QTest>

#include <algorithm>

#include <gtest/gtest.h>

static const auto nothingDrawn = [](const TileKey&) { return false; };

/// Pages of 1000 by 1400 pixels with gaps of 10, the first of them at `top` of a view of 1000 by 900.
static TilePlan::Situation situation(int pages, double top, int direction) {
    TilePlan::Situation made;
    for (int i = 0; i < pages; ++i) {
        PlacedPage page;
        page.index = i;
        page.look.content.pageNumber = i;
        page.look.pixels = {1000, 1400};
        page.rect = QRectF(0, top + i * 1410, 1000, 1400);
        made.pages.push_back(page);
    }
    made.view = {0, 0, 1000, 900};
    made.direction = direction;
    made.byteLimit = 64 << 20;
    return made;
}

static bool isStandIn(const TileJob& job) {
    return job.key == TilePlan::standIn(job.key.look);
}

/// The pages of the sharp tiles in the order in which they are wanted, each once.
static std::vector<int> pageOrder(const std::vector<TileJob>& jobs) {
    std::vector<int> pages;
    for (const TileJob& job : jobs) {
        const int page = job.key.look.content.pageNumber;
        if (!isStandIn(job) && std::find(pages.begin(), pages.end(), page) == pages.end())
            pages.push_back(page);
    }
    return pages;
}

TEST(TilePlan, wantsTheScreenFirstAndThenWhatComesNext) {
    // The view shows the end of page 2 and the start of page 3.
    EXPECT_EQ(pageOrder(TilePlan::make(situation(7, -2 * 1410 - 1000, 1), nothingDrawn)), (std::vector<int>{2, 3, 4}));
    EXPECT_EQ(pageOrder(TilePlan::make(situation(7, -2 * 1410 - 1000, -1), nothingDrawn)), (std::vector<int>{3, 2, 1}));
}

TEST(TilePlan, wantsStandInsOfEverythingAroundEachTileOnce) {
    for (const bool fast : {false, true}) {
        TilePlan::Situation now = situation(7, -2 * 1410 - 1000, 1);
        now.fast = fast;
        const std::vector<TileJob> jobs = TilePlan::make(now, nothingDrawn);
        EXPECT_EQ(std::count_if(jobs.begin(), jobs.end(), isStandIn), 7);
        for (std::size_t i = 0; i < jobs.size(); ++i) {
            for (std::size_t j = i + 1; j < jobs.size(); ++j)
                EXPECT_FALSE(jobs[i].key == jobs[j].key);
        }
        EXPECT_EQ(isStandIn(jobs.front()), fast);
    }
}

TEST(TilePlan, leavesOutWhatIsDrawnAndWhatMemoryForbids) {
    const TilePlan::Situation now = situation(7, -1000, 1);
    EXPECT_TRUE(TilePlan::make(now, [](const TileKey&) { return true; }).empty());
    TilePlan::Situation tight = now;
    tight.byteLimit = 0;
    for (const TileJob& job : TilePlan::make(tight, nothingDrawn)) {
        const QRectF page = now.pages[std::size_t(job.key.look.content.pageNumber)].rect;
        EXPECT_TRUE(isStandIn(job) || QRectF(job.key.deviceRect()).translated(page.topLeft()).intersects(now.view));
    }
}

TEST(TilePlan, tilesCoverAPageWithoutOverlap) {
    PlacedPage page;
    page.look.pixels = {4500, 1300};
    page.rect = QRectF(QPointF(-30, 40), QSizeF(page.look.pixels));
    QRegion covered;
    qint64 area = 0;
    for (const TileKey& key : TilePlan::tilesIn(page, page.rect)) {
        covered += key.deviceRect();
        area += qint64(key.deviceRect().width()) * key.deviceRect().height();
    }
    EXPECT_EQ(covered, QRegion(0, 0, 4500, 1300));
    EXPECT_EQ(area, 4500LL * 1300);
}

TEST(TilePlan, aHugePageCostsWhatTheScreenShowsOfIt) {
    TilePlan::Situation now = situation(1, 0, 1);
    now.pages[0].look.pixels = {16'000'000, 16'000'000};
    now.pages[0].rect = QRectF(-8e6, -8e6, 16e6, 16e6);
    const std::vector<TileJob> jobs = TilePlan::make(now, nothingDrawn);
    EXPECT_LT(jobs.size(), 20U);
    EXPECT_GT(jobs.size(), 2U);
}

TEST(PageTiles, tryAPageAgainThatCouldNotBeDrawn) {
    PageTiles tiles;
    TilePlan::Situation now = situation(1, 0, 1); // without a source nothing can be drawn
    QSignalSpy arrivals(&tiles, &PageTiles::tileArrived);
    QObject::connect(&tiles, &PageTiles::retryDue, [&] { tiles.plan(now); }); // as a view does
    const auto triesAgain = [&] {
        arrivals.clear();
        return QTest::qWaitFor([&] { return !arrivals.isEmpty(); }, 60'000);
    };
    tiles.plan(now);
    ASSERT_TRUE(triesAgain());
    const std::size_t tilesOfATry = TilePlan::make(now, nothingDrawn).size();
    for (int i = 0; i < 100; ++i) {
        tiles.plan(now); // as often as scrolling does
        QTest::qWait(0);
    }
    EXPECT_LE(std::size_t(arrivals.count()), 3 * tilesOfATry);
    for (int i = 0; i < 2; ++i) {
        EXPECT_TRUE(triesAgain());
        EXPECT_TRUE(tiles.isUnreadable(now.pages[0].look.content));
        QTest::qWait(50); // for the other tiles of the same try
    }
}

TEST(PageTiles, drawWhatIsWantedUntilItChanges) {
    const auto document = sampleDocument(4);
    PageTiles tiles;
    TilePlan::Situation now = situation(4, 0, 1);
    for (PlacedPage& page : now.pages) {
        page.page = document->page(page.index);
        page.look.content = page.page->content();
        page.pageToPixels =
            page.page->displayTransform(PDFDisplayBox::cropBox) * QTransform::fromScale(1000 / 612.0, 1400 / 792.0);
    }
    tiles.plan(now);
    const auto sharp = [&](const PlacedPage& page) { return tiles.isSharp(page, page.rect & now.view); };
    EXPECT_TRUE(QTest::qWaitFor([&] { return sharp(now.pages[0]); }, 60'000));

    // A jump far away, then nothing at all: what was asked for in between never arrives.
    QSignalSpy arrivals(&tiles, &PageTiles::tileArrived);
    for (PlacedPage& page : now.pages)
        page.rect.translate(0, -3 * 1410);
    tiles.plan(now);
    EXPECT_TRUE(QTest::qWaitFor([&] { return sharp(now.pages[3]); }, 60'000));
    tiles.clear();
    arrivals.clear();
    EXPECT_EQ(tiles.bytes(), 0);
    QTest::qWait(100);
    EXPECT_EQ(arrivals.count(), 0);
}
