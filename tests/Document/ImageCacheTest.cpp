#include "ImageCache.h"

#include <gtest/gtest.h>

static QImage picture(int side) {
    QImage image(side, side, QImage::Format_RGB32);
    image.fill(Qt::red);
    return image;
}

TEST(ImageCache, theLeastRecentlyUsedImageMakesRoom) {
    ImageCache few(3, 1'000'000);
    for (const QString& key : {QStringLiteral("a"), QStringLiteral("b"), QStringLiteral("c")})
        few.insert(key, picture(1));
    EXPECT_FALSE(few.image(QStringLiteral("a")).isNull()); // now b is the oldest
    few.insert(QStringLiteral("d"), picture(1));
    EXPECT_EQ(few.count(), 3);
    EXPECT_TRUE(few.image(QStringLiteral("b")).isNull());
    EXPECT_FALSE(few.image(QStringLiteral("a")).isNull());

    ImageCache cache(100, 1000);
    cache.insert(QStringLiteral("a"), picture(10)); // 400 bytes
    cache.insert(QStringLiteral("b"), picture(10));
    cache.insert(QStringLiteral("a"), picture(5)); // replaces: 100 bytes
    EXPECT_EQ(cache.byteCount(), 500);
    cache.insert(QStringLiteral("c"), picture(15)); // 900 bytes: b has to go, a fits beside it
    EXPECT_EQ(cache.byteCount(), 1000);
    EXPECT_TRUE(cache.image(QStringLiteral("b")).isNull());
    cache.insert(QStringLiteral("c"), picture(20)); // larger than all: not kept, and no old picture in its place
    EXPECT_TRUE(cache.image(QStringLiteral("c")).isNull());
    cache.insert(QStringLiteral("a"), QImage());
    EXPECT_TRUE(cache.image(QStringLiteral("a")).isNull());
    EXPECT_EQ(cache.byteCount(), 0);
    for (const QString& key : {QStringLiteral("1-0"), QStringLiteral("2-0"), QStringLiteral("1-1")})
        cache.insert(key, picture(5));
    cache.removeIf([](const QString& key) { return key.startsWith(QStringLiteral("1-")); });
    EXPECT_FALSE(cache.image(QStringLiteral("2-0")).isNull());
    EXPECT_EQ(cache.byteCount(), 100);
    cache.removeAll();
    EXPECT_EQ(cache.byteCount(), 0);
}
