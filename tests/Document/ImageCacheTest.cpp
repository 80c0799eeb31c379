#include "ImageCache.h"

#include <gtest/gtest.h>

static QImage picture(int side) {
    QImage image(side, side, QImage::Format_RGB32);
    image.fill(Qt::red);
    return image;
}

TEST(ImageCache, theLeastRecentlyUsedImageMakesRoom) {
    ImageCache cache(3, 1'000'000);
    for (const QString& key : {u"a"_qs, u"b"_qs, u"c"_qs})
        cache.insert(key, picture(1));
    EXPECT_FALSE(cache.image(u"a"_qs).isNull()); // now b is the oldest
    cache.insert(u"d"_qs, picture(1));
    EXPECT_EQ(cache.count(), 3);
    EXPECT_TRUE(cache.image(u"b"_qs).isNull());
    EXPECT_FALSE(cache.image(u"a"_qs).isNull());
    EXPECT_FALSE(cache.image(u"c"_qs).isNull());
    EXPECT_FALSE(cache.image(u"d"_qs).isNull());
}

TEST(ImageCache, countsTheBytesThroughEveryWayOut) {
    ImageCache cache(100, 1000);
    cache.insert(u"a"_qs, picture(10)); // 400 bytes
    cache.insert(u"b"_qs, picture(10));
    EXPECT_EQ(cache.byteCount(), 800);
    cache.insert(u"a"_qs, picture(5)); // replaces: 100 bytes
    EXPECT_EQ(cache.byteCount(), 500);
    cache.insert(u"c"_qs, picture(15)); // 900 bytes: b has to go, a fits beside it
    EXPECT_EQ(cache.byteCount(), 1000);
    EXPECT_TRUE(cache.image(u"b"_qs).isNull());

    cache.insert(u"c"_qs, picture(20)); // larger than all: not kept, and no old picture in its place
    EXPECT_TRUE(cache.image(u"c"_qs).isNull());
    cache.insert(u"a"_qs, QImage());
    EXPECT_TRUE(cache.image(u"a"_qs).isNull());
    EXPECT_EQ(cache.count(), 0);
    EXPECT_EQ(cache.byteCount(), 0);

    for (const QString& key : {u"1-0"_qs, u"2-0"_qs, u"1-1"_qs})
        cache.insert(key, picture(5));
    cache.removeIf([](const QString& key) { return key.startsWith(u"1-"_qs); });
    EXPECT_FALSE(cache.image(u"2-0"_qs).isNull());
    EXPECT_EQ(cache.byteCount(), 100);
    cache.removeAll();
    EXPECT_TRUE(cache.image(u"2-0"_qs).isNull());
    EXPECT_EQ(cache.byteCount(), 0);
}
