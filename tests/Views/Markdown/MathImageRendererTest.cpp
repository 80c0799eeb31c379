#include "MathImageRenderer.h"

#include <algorithm>
#include <string>

#include <gtest/gtest.h>

using MathImageRenderer::RenderedFormula;

namespace {

const QColor ink(20, 40, 160);

RenderedFormula image(const char* latex, double size = 22, double ratio = 1) {
    const std::optional<RenderedFormula> made = MathImageRenderer::render(QString::fromLatin1(latex), size, ink, ratio);
    EXPECT_TRUE(made) << latex;
    return made.value_or(RenderedFormula());
}

/// The first and last row or column with ink, counted from the edges.
QMargins clearEdges(const QImage& picture) {
    int left = picture.width();
    int top = picture.height();
    int right = left;
    int bottom = top;
    for (int y = 0; y < picture.height(); ++y) {
        for (int x = 0; x < picture.width(); ++x) {
            if (qAlpha(picture.pixel(x, y)) < 11)
                continue;
            left = std::min(left, x);
            top = std::min(top, y);
            right = std::min(right, picture.width() - 1 - x);
            bottom = std::min(bottom, picture.height() - 1 - y);
        }
    }
    return {left, top, right, bottom};
}

} // namespace

TEST(MathImageRenderer, imagesAreCutToTheirInkAndAMargin) {
    for (const char* latex :
         {"\\frac{a}{b}", "\\sum_{i=1}^{n} i", "\\sqrt{x}", "\\int f dx", "\\left(\\frac12\\right)"}) {
        const QMargins edges = clearEdges(image(latex).image);
        EXPECT_EQ(edges.top(), 3) << latex;
        EXPECT_EQ(edges.bottom(), 3) << latex;
        EXPECT_EQ(edges.right(), 3) << latex;
        EXPECT_LE(edges.left(), 3) << latex << ": a formula begins at the very left of its canvas";
    }
}

TEST(MathImageRenderer, theBaselineIsWhereLettersStand) {
    EXPECT_NEAR(image("x").descent, 3, 1) << "the margin";
    EXPECT_NEAR(image("m").descent, image("M").descent, 1);
    EXPECT_GT(image("y").descent, image("x").descent + 3);
    const RenderedFormula fraction = image("\\frac{x}{y}");
    EXPECT_GT(fraction.descent, 12);
    EXPECT_LT(fraction.descent, fraction.image.height() / 2.0);
}

TEST(MathImageRenderer, aFinerScreenGetsMorePixelsForTheSameSize) {
    const RenderedFormula plain = image("\\frac{\\pi^2}{6}");
    const RenderedFormula fine = image("\\frac{\\pi^2}{6}", 22, 2);
    EXPECT_EQ(fine.image.size(), plain.image.size() * 2);
    EXPECT_EQ(fine.image.deviceIndependentSize(), QSizeF(plain.image.size()));
    EXPECT_EQ(fine.descent, plain.descent);
}

TEST(MathImageRenderer, whatIsNoFormulaOrLeavesNoInkGivesNothing) {
    MathImageRenderer::removeAll();
    for (const char* latex : {"", "\\quad", "\\frac{a", "\\nosuchcommand", "\\begin{matrix}", "{}", "^"})
        EXPECT_FALSE(MathImageRenderer::render(QString::fromLatin1(latex), 15, ink)) << latex;
    EXPECT_FALSE(MathImageRenderer::render(QString(200'000, u'{'), 15, ink));
    EXPECT_EQ(MathImageRenderer::count(), 0) << "failures are tried again";
    const RenderedFormula wide = image(QByteArray(40'000, 'm').constData());
    EXPECT_LE(wide.image.width(), 2000);
    EXPECT_LE(
        image("\\begin{matrix}"
              "a\\\\b\\\\c\\\\d\\\\e\\\\f\\\\g\\\\h\\\\i\\\\j\\\\k\\\\l\\\\m\\\\n\\\\o\\\\p\\\\q\\\\r\\end{matrix}")
            .image.height(),
        400);
}

TEST(MathImageRenderer, imagesAreKeptByWhatDecidesTheirLook) {
    MathImageRenderer::removeAll();
    const QImage first = image("x^2", 15).image;
    EXPECT_EQ(image("x^2", 15).image.cacheKey(), first.cacheKey());
    (void)image("x^2", 17);
    (void)image("x^2", 15, 2);
    (void)MathImageRenderer::render(QStringLiteral("x^2"), 15, Qt::red);
    EXPECT_EQ(MathImageRenderer::count(), 4);
    for (int i = 0; i < 600; ++i)
        (void)image(("x_{" + std::to_string(i) + "}").c_str());
    EXPECT_EQ(MathImageRenderer::count(), 500);
    // Large ones are fewer: of 2,000 by 60 points at this ratio each takes some megabytes.
    for (int i = 0; i < 40; ++i)
        (void)image((std::string(300, 'm') + "_{" + std::to_string(i) + "}").c_str(), 22, 4);
    EXPECT_LE(MathImageRenderer::bytes(), MathImageRenderer::maximumBytes);
    EXPECT_GT(MathImageRenderer::bytes(), MathImageRenderer::maximumBytes / 2);
    EXPECT_LT(MathImageRenderer::count(), 500);
    MathImageRenderer::removeAll();
    EXPECT_EQ(MathImageRenderer::count(), 0);
    EXPECT_EQ(MathImageRenderer::bytes(), 0);
}
