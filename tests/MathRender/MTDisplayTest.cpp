// Displays as they are drawn: looked at in pictures, ten pixels to the point.

#include "FormulaLayout.h"
#include "MTColor.h"

#include <QImage>
#include <QPainter>

#include <gtest/gtest.h>

using namespace FormulaLayout;

namespace {

/// A formula at 20 points on white, its baseline at y 0 and its start at x 0 of points with y up.
class Picture {
public:
    explicit Picture(QStringView source, MTLineStyle style = MTLineStyle::display, QColor color = Qt::black)
        : m_image(1200, 1200, QImage::Format_RGB32) {
        m_image.fill(Qt::white);
        const auto display = layout(source, style, font(20));
        display->setTextColor(color);
        m_bounds = display->displayBounds();
        QPainter painter(&m_image);
        painter.translate(scale * margin, scale * baseline);
        painter.scale(scale, -scale);
        display->draw(painter);
        EXPECT_FALSE(painter.testRenderHint(QPainter::Antialiasing)) << "the painter is left as it was";
    }

    [[nodiscard]] QColor at(double x, double y) const {
        return m_image.pixelColor(qRound(scale * (margin + x) - 0.5), qRound(scale * (baseline - y) - 0.5));
    }
    [[nodiscard]] QRectF bounds() const { return m_bounds; }

    /// The smallest rectangle around all that is drawn, in points.
    [[nodiscard]] QRectF inked() const {
        int left = m_image.width();
        int top = m_image.height();
        int right = -1;
        int bottom = -1;
        for (int y = 0; y < m_image.height(); ++y) {
            const auto* line = reinterpret_cast<const QRgb*>(m_image.constScanLine(y));
            for (int x = 0; x < m_image.width(); ++x) {
                if (qGray(line[x]) < 128) {
                    left = std::min(left, x);
                    right = std::max(right, x);
                    top = std::min(top, y);
                    bottom = std::max(bottom, y);
                }
            }
        }
        return {left / scale - margin, baseline - (bottom + 1) / scale, (right + 1 - left) / scale,
                (bottom + 1 - top) / scale};
    }

private:
    static constexpr double scale = 10;
    static constexpr double margin = 10;
    static constexpr double baseline = 60;

    QImage m_image;
    QRectF m_bounds;
};

/// Whether two rectangles are the same but for a pixel.
void expectNear(const QRectF& rectangle, double left, double bottom, double right, double top) {
    constexpr double pixel = 0.11;
    EXPECT_NEAR(rectangle.left(), left, pixel);
    EXPECT_NEAR(rectangle.top(), bottom, pixel);
    EXPECT_NEAR(rectangle.right(), right, pixel);
    EXPECT_NEAR(rectangle.bottom(), top, pixel);
}

} // namespace

TEST(Drawing, glyphsAreWhereTheirOutlinesAre) {
    // At 20 points a thousandth is 0.02. The outline of x is 29 to 527 wide, -11 to 442 high.
    expectNear(Picture(u"x").inked(), 0.58, -0.22, 10.54, 8.84);
    // A large sum from 56 to 1387, -450 to 950.
    expectNear(Picture(u"\\sum").inked(), 1.12, -9, 27.74, 19);
    // The superscript of x^2 reaches 36.3 + 46.62 per cent.
    EXPECT_NEAR(Picture(u"x^2").inked().bottom(), 16.58, 0.11);
}

TEST(Drawing, theLineOfAFractionIsOnTheAxis) {
    // 0.8 thick around 5, over the width of the parts, with digits above and below.
    const Picture fraction(u"\\frac{1}{222}");
    for (const double x : {0.1, 15.0, 29.9}) {
        EXPECT_EQ(fraction.at(x, 5), Qt::black) << x;
        EXPECT_EQ(fraction.at(x, 4.65), Qt::black);
        EXPECT_EQ(fraction.at(x, 5.35), Qt::black);
        EXPECT_EQ(fraction.at(x, 4.45), Qt::white);
        EXPECT_EQ(fraction.at(x, 5.55), Qt::white);
    }
    EXPECT_EQ(fraction.at(-0.15, 5), Qt::white) << "its ends are flat";
    EXPECT_EQ(fraction.at(30.15, 5), Qt::white);
    EXPECT_EQ(Picture(u"1\\atop222").at(3, 5), Qt::white);
}

TEST(Drawing, theSignOfARootMeetsItsLine) {
    // The line is at 92.7 - 2 per cent, from 83.3 to 133.3, and 4 thick. The sign overlaps with its start.
    const Picture root(u"\\sqrt1");
    for (double x = 16.5; x < 26.9; x += 0.2)
        EXPECT_EQ(root.at(x, 18.14), Qt::black) << x;
    EXPECT_EQ(root.at(26.66 + 0.3, 18.14), Qt::black) << "a round end stands out by half of the thickness";
    EXPECT_EQ(root.at(26.66 + 0.6, 18.14), Qt::white);
    EXPECT_EQ(root.at(20, 18.65), Qt::white);
    expectNear(root.inked(), 1.46, -1.46, 27.06, 18.54);
    // With a degree the same, moved by it.
    const Picture tenth(u"\\sqrt[10]1");
    EXPECT_NEAR(tenth.inked().right(), 27.06 + 4.44, 0.11);
}

TEST(Drawing, tallDelimitersHaveNoGaps) {
    const Picture group(u"\\left|\\begin{matrix}1\\\\1\\\\1\\\\1\\end{matrix}\\right\\|");
    // The bars may be 5 points shorter than the matrix.
    const QRectF bounds = group.bounds();
    int gaps = 0;
    for (double y = bounds.top() + 2.6; y < bounds.bottom() - 2.6; y += 0.1)
        gaps += group.at(2.78, y).lightness() < 128 ? 0 : 1;
    EXPECT_EQ(gaps, 0);
}

TEST(Drawing, boxesAreAsLargeAsWhatIsDrawn) {
    for (const QStringView source :
         {u"\\frac{x^2}{y_1}", u"\\left(\\frac12\\right)", u"\\overline{y}\\underline{x}", u"\\sum_1^2", u"\\int_0^1 f",
          u"\\begin{pmatrix}1&2\\\\3&4\\\\5&6\\\\7&8\\end{pmatrix}", u"\\hat{x}\\vec{b}", u"\\binom{n}{k}",
          u"\\sqrt{\\frac{a}{b}}"}) {
        const Picture picture(source);
        constexpr double tolerance = 1.3; // room beside glyphs, over bars and over roots
        constexpr double lean = 1.3;      // how far an italic letter hangs over
        SCOPED_TRACE(source.toUtf8().constData());
        EXPECT_GE(picture.inked().top(), picture.bounds().top() - 0.11);
        EXPECT_LE(picture.inked().top(), picture.bounds().top() + tolerance);
        EXPECT_LE(picture.inked().bottom(), picture.bounds().bottom() + 0.11);
        EXPECT_GE(picture.inked().bottom(), picture.bounds().bottom() - tolerance);
        EXPECT_LE(picture.inked().right(), picture.bounds().right() + lean);
    }
}

TEST(Drawing, coloursReachAllParts) {
    const Picture fraction(u"\\frac{1}{222}", MTLineStyle::display, Qt::red);
    EXPECT_EQ(fraction.at(15, 5), Qt::red);
    // A box behind all of the list, as high as it.
    const Picture box(u"\\colorbox{#00ff00}{\\frac{1}{222}}\\color{#0000ff}{\\sqrt1}");
    EXPECT_EQ(box.at(1, 20), QColor(Qt::green));
    EXPECT_EQ(box.at(15, 5), Qt::black);
    EXPECT_EQ(box.at(30 + 20, 18.14), QColor(Qt::blue));
}

TEST(MTColor, hexadecimalNumbersOnly) {
    const struct {
        QStringView text;
        std::optional<QColor> color;
    } rows[] = {
        {u"#ff8000", QColor(255, 128, 0)},
        {u"#FF8000", QColor(255, 128, 0)},
        {u"", std::nullopt},
        {u"red", std::nullopt},
        {u"ff8000", std::nullopt},
        {u"#", QColor(0, 0, 0)},
        {u"#ff", QColor(0, 0, 255)},
        {u"#f80", QColor(0, 15, 128)},
        {u"#12345678", QColor(0x34, 0x56, 0x78)},
        {u"#12zz56", QColor(0, 0, 18)},
        {u"##ffffff", QColor(0, 0, 0)},
        {u"#-1", QColor(0, 0, 0)},
    };
    for (const auto& [text, color] : rows)
        EXPECT_EQ(MTColor::fromHexString(text), color) << text.toUtf8().constData();
}
