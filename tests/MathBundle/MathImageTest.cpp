#include "MathImage.h"

#include <gtest/gtest.h>

TEST(MathImage, drawsInItsFontAndSaysHowLarge) {
    MathImage formula;
    formula.latex = QStringLiteral("\\frac12");
    formula.fontSize = 100;
    const MTMathImageResult result = formula.asImage(2);
    ASSERT_TRUE(!result.error && result.image && result.layoutInfo);
    EXPECT_EQ(formula.intrinsicContentSize, QSizeF(50, 134.3 + 68.6));
    EXPECT_EQ(result.image->size(), QSize(100, 406));
    EXPECT_NEAR(result.layoutInfo->ascent, 134.3, 1e-9);
    EXPECT_NEAR(result.layoutInfo->descent, 68.6, 1e-9);
    // The line: from side to side, on the axis.
    const int axis = qRound(2 * (203 - (203 - 202.9) / 2 - 68.6 - 25));
    for (const int x : {2, 50, 97})
        EXPECT_EQ(result.image->pixelColor(x, axis), Qt::black) << x;

    formula.latex = QStringLiteral("}");
    EXPECT_TRUE(formula.asImage().error);
}
