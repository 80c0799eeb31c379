#include "Palette.h"

#include <QPalette>

#include <gtest/gtest.h>

TEST(Palette, appTintFollowsTheWidgetsPalette) {
    EXPECT_EQ(Palette::appTint(QPalette(Qt::black, Qt::lightGray, Qt::white, Qt::gray, Qt::gray, Qt::black, Qt::white))
                  .name(),
              QStringLiteral("#f9fcff"));
    const QPalette dark(Qt::white, Qt::black, Qt::gray, Qt::black, Qt::darkGray, Qt::white, Qt::black);
    const QColor tint = Palette::appTint(dark);
    EXPECT_LT(tint.lightness(), 48);
    EXPECT_GT(tint.blue(), tint.red());
}
