#include "MTMathUILabel.h"

#include "FormulaLayout.h"
#include "MTFont.h"
#include "MTLabel.h"
#include "MTMathImage.h"
#include "MTMathList.h"

#include <QImage>
#include <QPixmap>

using namespace FormulaLayout;

namespace {

/// The smallest rectangle around what is not of the colour of the first pixel.
QRect inked(const QImage& image) {
    QRect rectangle;
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x) {
            if (image.pixel(x, y) != image.pixel(0, 0))
                rectangle |= QRect(x, y, 1, 1);
        }
    }
    return rectangle;
}

} // namespace

TEST(MTMathUILabel, anEmptyFormulaIsNoError) {
    MTMathUILabel label;
    EXPECT_EQ(label.fontSize(), 20);
    EXPECT_TRUE(label.displayErrorInline());
    label.setContentInsets({10, 10, 10, 10});
    EXPECT_EQ(label.fittingSize(), QSizeF(0, 0));
    label.setContentInsets({});
    label.setLatex(QString());
    EXPECT_FALSE(label.error());
    ASSERT_TRUE(label.mathList());
    EXPECT_TRUE(label.mathList()->isEmpty());
    EXPECT_EQ(label.fittingSize(), QSizeF(0, 0));
}

TEST(MTMathUILabel, errorsAreShownInPlaceOfTheFormula) {
    MTMathUILabel label;
    label.resize(200, 40);
    label.setLatex(QStringLiteral("\\foo"));
    ASSERT_TRUE(label.error());
    EXPECT_EQ(label.error()->code, MTParseErrors::invalidCommand);
    EXPECT_FALSE(label.mathList());
    EXPECT_EQ(label.errorLabel().text(), u"Invalid command \\foo");
    EXPECT_FALSE(label.errorLabel().isHidden());
    EXPECT_EQ(label.errorLabel().geometry(), label.rect());
    EXPECT_EQ(label.errorLabel().palette().color(QPalette::WindowText), QColor(Qt::red));
    EXPECT_EQ(label.fittingSize(), QSizeF(0, 0));
    EXPECT_EQ(label.sizeThatFits({7, 8}), QSizeF(7, 8));
    label.layoutSubviews();
    EXPECT_FALSE(label.displayList());

    label.setDisplayErrorInline(false);
    EXPECT_TRUE(label.errorLabel().isHidden());
    label.setDisplayErrorInline(true);
    label.setLatex(QStringLiteral("x"));
    EXPECT_FALSE(label.error());
    EXPECT_TRUE(label.errorLabel().isHidden());
    EXPECT_EQ(label.accessibleName(), u"x");
}

TEST(MTMathUILabel, alignmentInsetsAndTheMiddle) {
    // A digit at 100 points is 50 wide and 66.6 high.
    MTMathUILabel label;
    label.setFontSize(100);
    label.setLatex(QStringLiteral("1"));
    label.setContentInsets({10, 20, 30, 40});
    EXPECT_EQ(label.fittingSize(), QSizeF(90, 126.6));
    EXPECT_EQ(label.sizeHint(), QSize(90, 127));
    label.resize(300, 200);
    const double y = (200 - 60 - 66.6) / 2 + 40;
    const struct {
        MTTextAlignment alignment;
        double x;
    } rows[] = {{MTTextAlignment::left, 10}, {MTTextAlignment::center, 115}, {MTTextAlignment::right, 220}};
    for (const auto& [alignment, x] : rows) {
        label.setTextAlignment(alignment);
        label.layoutSubviews();
        ASSERT_TRUE(label.displayList());
        expectPosition(*label.displayList(), {x, y});
    }
    // A minus is 4 high: it is placed as if it were 50. It is 23 above its baseline.
    label.setContentInsets({});
    label.setLatex(QStringLiteral("-"));
    label.layoutSubviews();
    EXPECT_NEAR(label.displayList()->position().y(), (200 - 50) / 2.0, 1e-9);
    // Text mode is smaller.
    label.setLatex(QStringLiteral("\\frac12"));
    label.setLabelMode(MTMathUILabelMode::text);
    EXPECT_NEAR(label.fittingSize().width(), 35, 1e-9);
}

TEST(MTMathUILabel, drawsTheRightWayUpAndInItsColour) {
    MTMathUILabel label;
    label.setFontSize(100);
    label.resize(100, 200);
    label.setLatex(QStringLiteral("1^2"));
    label.setTextColor(Qt::red);
    label.setTextColor(QColor());
    EXPECT_EQ(label.textColor(), Qt::red);
    QImage image(label.size(), QImage::Format_RGB32);
    image.fill(Qt::white);
    label.render(&image, {}, {}, QWidget::RenderFlags());
    // 82.92 high in all, in the middle; the 1 begins at 8.9.
    const QRect drawn = inked(image);
    EXPECT_NEAR(drawn.left(), 8.9, 1);
    EXPECT_NEAR(drawn.top(), 200 - (58.54 + 82.92), 1);
    EXPECT_NEAR(drawn.bottom(), 200 - 58.54, 1);
    const QRect lower = inked(image.copy(0, 120, 100, 80));
    EXPECT_LT(lower.right(), 50) << "the exponent is above";
    EXPECT_EQ(image.pixelColor(25, 120), Qt::red);
}

TEST(MTMathImage, isAsLargeAsTheFormulaInWholePoints) {
    MTMathImage formula;
    formula.font = font();
    formula.fontSize = 50;
    formula.latex = QStringLiteral("12");
    formula.contentInsets = {1, 2, 3, 4};
    formula.textColor = Qt::blue;
    for (const double ratio : {1.0, 2.0, 1.5}) {
        const MTMathImageResult result = formula.asImage(ratio);
        EXPECT_FALSE(result.error);
        ASSERT_TRUE(result.image && result.layoutInfo);
        EXPECT_NEAR(formula.intrinsicContentSize.width(), 54, 1e-9);
        EXPECT_NEAR(formula.intrinsicContentSize.height(), 39.3, 1e-9);
        EXPECT_NEAR(result.layoutInfo->ascent, 33.3, 1e-9);
        EXPECT_EQ(result.image->size(), QSize(int(54 * ratio), int(40 * ratio)));
        EXPECT_EQ(result.image->deviceIndependentSize(), QSizeF(54, 40));
        // From 8.9 per cent of 50 behind the inset to 44.9 per cent in the second digit, 0.35 above the lower inset.
        const QRect drawn = inked(*result.image);
        EXPECT_NEAR(drawn.left(), (1 + 4.45) * ratio, 1);
        EXPECT_NEAR(drawn.right(), (1 + 25 + 22.45) * ratio, 1);
        EXPECT_NEAR(drawn.bottom(), (40 - 4.35) * ratio, 1);
        EXPECT_EQ(result.image->pixel(0, 0), 0U) << "transparent";
    }
}

TEST(MTMathImage, noImageOfWhatIsWrongEmptyOrFarTooLarge) {
    MTMathImage formula;
    formula.font = font();
    formula.latex = QStringLiteral("\\frac{1");
    const MTMathImageResult wrong = formula.asImage();
    ASSERT_TRUE(wrong.error);
    EXPECT_EQ(wrong.error->code, MTParseErrors::mismatchBraces);
    EXPECT_FALSE(wrong.image || wrong.layoutInfo);

    formula.latex.clear();
    const MTMathImageResult empty = formula.asImage();
    EXPECT_FALSE(empty.error || empty.image);
    EXPECT_TRUE(empty.layoutInfo);

    formula.latex = QStringLiteral("x").repeated(5'000);
    const MTMathImageResult large = formula.asImage();
    EXPECT_FALSE(large.error || large.image);
    EXPECT_GT(formula.intrinsicContentSize.width(), 50'000);
}
