#include "TileCache.h"

#include <gtest/gtest.h>

static constexpr qint64 tileBytes = qint64(100) * 100 * 4;

static TileKey tile(int page, int row, QSize pixels = {100, 10'000}) {
    TileKey key;
    key.look.content.pageNumber = page;
    key.look.pixels = pixels;
    key.cell = {0, row};
    return key;
}

static QImage picture() {
    QImage image(100, 100, QImage::Format_RGB32);
    image.fill(Qt::white);
    return image;
}

TEST(TileCache, dropsWhatWasUnusedForTheLongestTime) {
    TileCache cache(3 * tileBytes);
    for (int row = 0; row < 3; ++row)
        cache.insert(tile(0, row), picture());
    cache.beginFrame();
    EXPECT_NE(cache.find(tile(0, 0)), nullptr);
    cache.insert(tile(0, 3), picture());
    EXPECT_TRUE(cache.contains(tile(0, 0)));
    EXPECT_FALSE(cache.contains(tile(0, 1)));
    EXPECT_EQ(cache.bytes(), 3 * tileBytes);
    cache.beginFrame();
    cache.setByteLimit(tileBytes);
    EXPECT_EQ(cache.bytes(), tileBytes);
    EXPECT_TRUE(cache.contains(tile(0, 3)));
}

// Otherwise a screen that needs more than the limit would be drawn again and again.
TEST(TileCache, keepsWhatTheFrameNeedsWhateverTheLimit) {
    TileCache cache(2 * tileBytes);
    cache.insert(tile(9, 0), picture());
    cache.beginFrame();
    for (int row = 0; row < 5; ++row)
        cache.insert(tile(0, row), picture());
    EXPECT_FALSE(cache.contains(tile(9, 0)));
    for (int row = 0; row < 5; ++row)
        EXPECT_TRUE(cache.contains(tile(0, row)));
    cache.beginFrame();
    cache.insert(tile(1, 0), picture());
    EXPECT_LE(cache.bytes(), 2 * tileBytes);
}

TEST(TileCache, countsATileThatIsReplacedOnce) {
    TileCache cache(10 * tileBytes);
    cache.insert(tile(0, 0), picture());
    cache.insert(tile(0, 0), picture());
    EXPECT_EQ(cache.bytes(), tileBytes);
    cache.clear();
    EXPECT_EQ(cache.bytes(), 0);
    EXPECT_EQ(cache.find(tile(0, 0)), nullptr);
}

TEST(TileCache, findsTheSameSheetInOtherLooks) {
    TileCache cache(10 * tileBytes);
    const PageLook look = tile(0, 0).look;
    TileKey turned = tile(0, 1);
    turned.look.rotation = 90;
    TileKey fewerAnnotations = tile(0, 2);
    fewerAnnotations.look.hiddenAnnotations = {3};
    for (const TileKey& key : {tile(0, 0), tile(0, 0, {200, 20'000}), turned, fewerAnnotations, tile(1, 0)})
        cache.insert(key, picture());
    std::vector<TileKey> found;
    for (const auto& [key, image] : cache.otherLooks(look))
        found.push_back(key);
    EXPECT_EQ(found, (std::vector<TileKey>{tile(0, 0, {200, 20'000}), fewerAnnotations}));
}

TEST(TileBudget, takesTheOldestTilesOfAllCachesButNoneOnTheScreen) {
    TileBudget budget(4 * tileBytes);
    TileCache hidden(10 * tileBytes, budget);
    for (int row = 0; row < 3; ++row)
        hidden.insert(tile(0, row), picture());
    hidden.beginFrame();
    {
        TileCache shown(10 * tileBytes, budget);
        for (int row = 0; row < 2; ++row)
            shown.insert(tile(1, row), picture());
        EXPECT_FALSE(hidden.contains(tile(0, 0)));
        EXPECT_TRUE(hidden.contains(tile(0, 1)));
        for (int row = 2; row < 6; ++row)
            shown.insert(tile(1, row), picture());
        EXPECT_EQ(hidden.bytes(), 0);
        EXPECT_EQ(shown.bytes(), 6 * tileBytes);
        EXPECT_EQ(budget.bytes(), 6 * tileBytes);
    }
    EXPECT_EQ(budget.bytes(), 0);
}
