// Fractions, radicals, large operators, delimiters, accents, lines and tables. The numbers are of Latin Modern Math at
// 100 points: a digit is 50 wide and 66.6 high, x is 57.2 wide, 44.2 high and 1.1 deep.

#include "FormulaLayout.h"
#include "MTAccentDisplay.h"
#include "MTCTLineDisplay.h"
#include "MTFont.h"
#include "MTFractionDisplay.h"
#include "MTGlyphConstructionDisplay.h"
#include "MTGlyphDisplay.h"
#include "MTLargeOpLimitsDisplay.h"
#include "MTLineDisplay.h"
#include "MTMathList.h"
#include "MTMathTable.h"
#include "MTRadicalDisplay.h"
#include "MTTypesetter.h"

#include <gtest/gtest.h>

using namespace FormulaLayout;

namespace {

QString nameOf(const MTGlyphDisplay& display) {
    return display.font()->nameForGlyph(display.glyph());
}

} // namespace

TEST(Fractions, shiftsAndGapsOfEachStyle) {
    const struct {
        QStringView source;
        MTLineStyle style;
        double up;
        double down;
        double ascent;
        double descent;
        double width;
    } rows[] = {
        {u"\\frac12", MTLineStyle::display, 67.7, 68.6, 134.3, 68.6, 50},
        {u"\\frac12", MTLineStyle::text, 39.4, 34.5, 86.02, 34.5, 35},
        {u"\\frac12", MTLineStyle::script, 0.7 * 39.4, 0.7 * 34.5, 0.7 * 39.4 + 33.3, 0.7 * 34.5, 25},
        // Not smaller parts than the fraction: the denominator comes too near by 6.55.
        {u"\\frac12", MTLineStyle::scriptOfScript, 19.7, 23.8, 19.7 + 33.3, 23.8, 25},
        // Fractions in it come within 12 of the rule: 6.2 above it and 5.58 below.
        {u"\\frac{\\frac12}{\\frac12}", MTLineStyle::display, 73.5, 75.02, 73.5 + 86.02, 75.02 + 34.5, 35},
        // Without rule there is 15.78 between these, of 28.
        {u"\\frac12\\atop\\frac12", MTLineStyle::display, 73.81, 74.71, 73.81 + 86.02, 74.71 + 34.5, 35},
        {u"1\\atop2", MTLineStyle::text, 44.4, 34.5, 44.4 + 46.62, 34.5, 35},
    };
    for (const auto& [source, style, up, down, ascent, descent, width] : rows) {
        SCOPED_TRACE(source.toUtf8().constData());
        const auto display = layout(source, style);
        const auto& fraction = at<MTFractionDisplay>(*display, 0);
        EXPECT_NEAR(fraction.numeratorUp(), up, 1e-9);
        EXPECT_NEAR(fraction.denominatorDown(), down, 1e-9);
        expectExtent(fraction, ascent, descent, width);
        const double size = style < MTLineStyle::script ? 100 : style == MTLineStyle::script ? 70 : 50;
        EXPECT_NEAR(fraction.lineThickness(), source.contains(u"atop") ? 0 : 0.04 * size, 1e-9);
        EXPECT_NEAR(fraction.linePosition(), 0.25 * size, 1e-9);
    }
    // The parts are centred in the coordinates of the list around the fraction.
    const auto display = layout(u"1\\frac{1}{111}");
    const auto& fraction = at<MTFractionDisplay>(*display, 1);
    const double x = 50 + 3 * 100.0 / 18;
    expectPosition(fraction.numerator(), {x + 50, 67.7});
    expectPosition(fraction.denominator(), {x, -68.6});
}

TEST(Fractions, delimitersGoByTheStyleAndNotByTheContent) {
    const auto inDisplay = layout(u"\\binom12");
    const auto& binomial = at<MTMathListDisplay>(*inDisplay, 0);
    EXPECT_EQ(nameOf(at<MTGlyphDisplay>(binomial, 0)), u"parenleft.v6") << "239.2 high, of 239";
    expectPosition(at<MTFractionDisplay>(binomial, 1), {73.6, 0});
    expectPosition(at<MTFractionDisplay>(binomial, 1).numerator(), {73.6, 67.7});
    expectPosition(at<MTGlyphDisplay>(binomial, 2), {123.6, 0});
    expectExtent(binomial, 144.6, 94.6, 197.2);
    const auto inText = layout(u"\\binom12", MTLineStyle::text);
    EXPECT_EQ(nameOf(at<MTGlyphDisplay>(at<MTMathListDisplay>(*inText, 0), 0)), u"parenleft.v1") << "109.4, of 101";
}

TEST(Radicals, theSignsTopIsTheRulesTop) {
    const struct {
        MTLineStyle style;
        double radicalAscent;
        double descent;
    } rows[] = {
        // The sign is 100 high. In display style 85.4 is asked for, and half of the 14.6 too many go above.
        {MTLineStyle::display, 4 + (14.8 + 7.3) + 66.6, 7.3},
        {MTLineStyle::text, 4 + (5 + 12.2) + 66.6, 12.2},
    };
    for (const auto& [style, radicalAscent, descent] : rows) {
        const auto display = layout(u"\\sqrt1", style);
        const auto& radical = at<MTRadicalDisplay>(*display, 0);
        expectExtent(radical, radicalAscent + 4, descent, 83.3 + 50);
        expectPosition(radical.radicand(), {83.3, 0});
        EXPECT_NEAR(radical.topKern(), 4, 1e-9);
        EXPECT_NEAR(radical.lineThickness(), 4, 1e-9);
        expectExtent(radical.radicalGlyph(), radicalAscent, 100 - radicalAscent, 83.3);
    }
    // A radicand higher than any variant gets a sign that is built, and as high as asked for.
    const auto tall = layout(u"\\sqrt{\\begin{matrix}1\\\\1\\\\1\\\\1\\end{matrix}}");
    const auto& radical = at<MTRadicalDisplay>(*tall, 0);
    const auto& sign = as<MTGlyphConstructionDisplay>(radical.radicalGlyph());
    const auto& inner = radical.radicand();
    EXPECT_NEAR(sign.ascent() + sign.descent(), inner.ascent() + inner.descent() + 14.8 + 4, 1e-3);
    EXPECT_NEAR(sign.ascent(), radical.ascent() - 4, 1e-9);
}

TEST(Radicals, aDegreeSitsOnTheSign) {
    // The kerns are 27.8 and -55.6; the bottom is raised by 0.6 of 96.7 - 7.3.
    const auto narrow = layout(u"\\sqrt[3]1");
    const auto& three = at<MTRadicalDisplay>(*narrow, 0);
    EXPECT_DOUBLE_EQ(three.radicalShift(), 0) << "27.8 + 25 - 55.6 is less";
    ASSERT_TRUE(three.degree());
    expectPosition(*three.degree(), {55.6 - 25, 53.64});
    expectExtent(three, 96.7, 7.3, 133.3);

    const auto wide = layout(u"1\\sqrt[10]1");
    const auto& ten = at<MTRadicalDisplay>(*wide, 1);
    EXPECT_NEAR(ten.radicalShift(), 22.2, 1e-9);
    expectPosition(*ten.degree(), {50 + 27.8, 53.64});
    expectPosition(ten.radicand(), {50 + 22.2 + 83.3, 0});
    EXPECT_NEAR(ten.width(), 155.5, 1e-9);
}

TEST(LargeOperators, limitsStackInDisplayStyleOnly) {
    const auto inDisplay = layout(u"\\sum_1^2");
    const auto& sum = at<MTLargeOpLimitsDisplay>(*inDisplay, 0);
    EXPECT_EQ(nameOf(as<MTGlyphDisplay>(sum.nucleus())), u"summation.v1");
    expectExtent(sum.nucleus(), 95, 45, 144.4);
    // The gaps: above at least 20, below at least 16.7, as 60 - 46.62 is less.
    expectExtent(sum, 95 + 20 + 46.62, 45 + 16.7 + 46.62, 144.4);
    expectPosition(*sum.upperLimit(), {54.7, 115});
    expectPosition(*sum.lowerLimit(), {54.7, -(45 + 16.7 + 46.62)});
    // Low limits: 60 - 0.7 * 44.2 from the operator.
    const auto low = layout(u"\\sum_x");
    EXPECT_NEAR(at<MTLargeOpLimitsDisplay>(*low, 0).lowerLimitGap(), 60 - 30.94, 1e-9);
    // Limits wider than the operator, which is in the middle then.
    const auto wide = layout(u"1\\lim_{x\\to1000}");
    const auto& lim = at<MTLargeOpLimitsDisplay>(*wide, 1);
    expectPosition(*lim.lowerLimit(), {lim.position().x(), lim.lowerLimit()->position().y()});
    EXPECT_NEAR(lim.nucleus().position().x() - lim.position().x(), (lim.width() - lim.nucleus().width()) / 2, 1e-9);
    EXPECT_NEAR(lim.position().x(), 50 + 3 * 100.0 / 18, 1e-9);

    const auto inText = layout(u"\\sum_1^2", MTLineStyle::text);
    ASSERT_EQ(inText->subDisplays().size(), 3U);
    expectExtent(at<MTGlyphDisplay>(*inText, 0), 75, 25, 105.6);
    expectPosition(at(*inText, 1), {105.6, 75 - 17.5});
    expectPosition(at(*inText, 2), {105.6, -(25 + 14)});
}

TEST(LargeOperators, scriptsOfAnIntegralFollowItsLean) {
    // 99.9 wide with 59.1 of lean; 136.1 and 86.1 from the axis, evenly.
    const auto both = layout(u"\\int_1^2");
    ASSERT_EQ(both->subDisplays().size(), 3U);
    expectPosition(at(*both, 1), {99.9, 136.1 - 17.5});
    expectPosition(at(*both, 2), {40.8, -(86.1 + 14)});
    const auto upper = layout(u"\\int^2");
    expectPosition(at(*upper, 1), {99.9, 118.6});
    // Limits on demand, shifted by half of the lean.
    const auto limits = layout(u"\\int\\limits_1^2");
    const auto& integral = at<MTLargeOpLimitsDisplay>(*limits, 0);
    expectPosition(*integral.upperLimit(), {29.55 + (99.9 - 35) / 2, 136.1 + 20});
    expectPosition(*integral.lowerLimit(), {-29.55 + (99.9 - 35) / 2, -(86.1 + 16.7 + 46.62)});
}

TEST(LargeOperators, namesAreTextOfTheirSize) {
    const auto sine = layout(u"\\sin x");
    const auto& name = at<MTCTLineDisplay>(*sine, 0);
    EXPECT_EQ(name.line().text, u"sin");
    EXPECT_DOUBLE_EQ(name.font()->fontSize(), 100);
    expectPosition(at(*sine, 1), {name.width() + 3 * 100.0 / 18, 0});
}

TEST(Delimiters, reachNineTenthsOfTheirContentOrAllButFivePoints) {
    const struct {
        QStringView source;
        QStringView glyph;
    } rows[] = {
        {u"\\left(x\\right)", u"parenleft"},           // 47.2 of 99.6
        {u"\\left(\\frac12\\right)", u"parenleft.v6"}, // 2 * 109.3 - 5 of 239.2
        {u"\\left|\\frac12\\right)", u"divides.v5"},
    };
    for (const auto& [source, glyph] : rows) {
        const auto display = layout(source);
        EXPECT_EQ(nameOf(at<MTGlyphDisplay>(at<MTMathListDisplay>(*display, 0), 0)), glyph);
    }
    // Smaller ones: for a point size of 10, nine tenths of 21.86 are more than 16.86.
    const auto small = layout(u"\\left(\\frac12\\right)", MTLineStyle::display, font(10));
    EXPECT_EQ(nameOf(at<MTGlyphDisplay>(at<MTMathListDisplay>(*small, 0), 0)), u"parenleft.v5") << "20.92 of 19.7";

    const auto display = layout(u"\\left.x\\right)");
    const auto& open = at<MTMathListDisplay>(*display, 0);
    ASSERT_EQ(open.subDisplays().size(), 2U) << "a point is no delimiter";
    expectPosition(at(open, 1), {57.2, 0});
}

TEST(Delimiters, areBuiltWhenNoVariantIsHighEnoughAndCentredOnTheAxis) {
    const auto display = layout(u"\\left\\{\\begin{matrix}1\\\\1\\\\1\\\\1\\end{matrix}\\right)");
    const auto& group = at<MTMathListDisplay>(*display, 0);
    const auto& table = at<MTMathListDisplay>(group, 1);
    const double reach = 2 * std::max(table.ascent() - 25, table.descent() + 25);
    for (const std::size_t side : {0U, 2U}) {
        const auto& delimiter = at<MTGlyphConstructionDisplay>(group, side);
        EXPECT_NEAR(delimiter.ascent() + delimiter.descent(), std::max(0.901 * reach, reach - 5), 1e-3);
        EXPECT_NEAR(delimiter.ascent() - 25, delimiter.descent() + 25, 1e-3);
        EXPECT_DOUBLE_EQ(delimiter.position().y(), 0);
    }
    EXPECT_LT(group.ascent(), table.ascent() + 1) << "a built delimiter is no higher than it looks";
}

TEST(Accents, standOverTheTopOfALetterAndOverTheMiddleOfAGroup) {
    const struct {
        QStringView source;
        QStringView glyph;
        QPointF position;
        double ascent;
        double width;
    } rows[] = {
        // Lowered to the height of x: 44.2 - 44.2. The middle of the accent is at -26.4, the top of x at 32.9.
        {u"\\hat x", u"circumflexcmb", {59.3, 0}, 73.4, 57.2},
        // b is 69.4 high, and accents are made for 45.
        {u"\\hat b", u"circumflexcmb", {42.9, 24.4}, 97.8, 42.9},
        // The widest that is not wider than the group: 91.9 of 95.8.
        {u"\\widehat{ab}", u"circumflexcmb.h3", {47.9 - 45.95, 24.4}, 24.4 + 74.7, 95.8},
        {u"\\vec{ab}", u"uni20D7.h1", {47.9 - 32.95, 24.4}, 24.4 + 71.1, 95.8},
        // A pile stays over the letter.
        {u"\\hat{\\hat x}", u"circumflexcmb", {59.3, 73.4 - 45}, 73.4 - 45 + 73.4, 57.2},
    };
    for (const auto& [source, glyph, position, ascent, width] : rows) {
        SCOPED_TRACE(source.toUtf8().constData());
        const auto display = layout(source);
        const auto& accent = at<MTAccentDisplay>(*display, 0);
        EXPECT_EQ(nameOf(accent.accent()), glyph);
        expectPosition(accent.accent(), position);
        expectExtent(accent, ascent, accent.accentee().descent(), width);
    }
}

TEST(Accents, scriptsOfAnAccentedLetterStandBesideTheLetter) {
    const auto letter = layout(u"\\hat x^2");
    ASSERT_EQ(letter->subDisplays().size(), 1U);
    const auto& accent = at<MTAccentDisplay>(*letter, 0);
    expectPosition(accent.accent(), {59.3, 0});
    expectPosition(at(accent.accentee(), 1), {57.2, 36.3});
    EXPECT_NEAR(accent.width(), 57.2 + 35, 1e-9);
    EXPECT_NEAR(accent.ascent(), 36.3 + 46.62 - 44.2 + 73.4, 1e-9) << "of letter and script, less the letter's";
    // In a denominator x is cramped, and so are its scripts.
    const auto cramped = layout(u"\\frac1{\\hat x^2}");
    const auto& inDenominator = at<MTAccentDisplay>(at<MTFractionDisplay>(*cramped, 0).denominator(), 0);
    expectPosition(at(inDenominator.accentee(), 1), {57.2, 28.9});

    const auto group = layout(u"\\hat{ab}^2");
    ASSERT_EQ(group->subDisplays().size(), 2U) << "beside a group";
    // Down to the letter through other accents.
    const auto pile = layout(u"\\bar{\\hat{\\dot x}}^2");
    ASSERT_EQ(pile->subDisplays().size(), 1U);
    const auto& dot =
        at<MTAccentDisplay>(at<MTAccentDisplay>(at<MTAccentDisplay>(*pile, 0).accentee(), 0).accentee(), 0);
    expectPosition(at(dot.accentee(), 1), {57.2, 36.3});
}

TEST(Lines, overAndUnder) {
    const auto over = layout(u"\\overline x");
    const auto& overline = at<MTLineDisplay>(*over, 0);
    expectExtent(overline, 44.2 + 12 + 4 + 4, 1.1, 57.2);
    EXPECT_NEAR(overline.lineShiftUp(), 56.2, 1e-9);
    EXPECT_NEAR(overline.lineThickness(), 4, 1e-9);
    const auto under = layout(u"1\\underline{x^2}");
    const auto& underline = at<MTLineDisplay>(*under, 1);
    EXPECT_NEAR(underline.descent(), 1.1 + 12 + 4 + 4, 1e-9);
    EXPECT_NEAR(underline.lineShiftUp(), -13.1, 1e-9);
    expectPosition(underline.inner(), {50, 0});
    expectPosition(at(underline.inner(), 1), {57.2, 36.3});
    // Under a line over it, the list is cramped.
    const auto cramped = layout(u"\\overline{x^2}");
    expectPosition(at(at<MTLineDisplay>(*cramped, 0).inner(), 1), {57.2, 28.9});
}

TEST(Tables, columnsAndRowsAreAlignedAndCentredOnTheAxis) {
    const auto matrix = layout(u"\\begin{matrix}1&222\\\\111&2\\\\2\\end{matrix}");
    const auto& table = at<MTMathListDisplay>(*matrix, 0);
    ASSERT_EQ(table.subDisplays().size(), 3U);
    // 150, a quad of 100, 150; rows 120 apart: 66.6 over the first baseline and 240 below it.
    const double first = 25 - (66.6 - 240) / 2;
    expectExtent(table, first + 66.6, 240 - first, 400);
    expectPosition(at(table, 0), {0, first});
    expectPosition(at(table, 1), {0, first - 120});
    expectPosition(at(table, 2), {0, first - 240});
    expectPosition(at(at<MTMathListDisplay>(table, 0), 0), {50, 0});
    expectPosition(at(at<MTMathListDisplay>(table, 0), 1), {250, 0});
    expectPosition(at(at<MTMathListDisplay>(table, 1), 1), {300, 0});
    EXPECT_EQ(at<MTMathListDisplay>(table, 2).subDisplays().size(), 1U) << "a short row";

    const auto aligned = layout(u"\\begin{aligned}1&=2\\\\111&=3\\end{aligned}");
    const auto& rows = at<MTMathListDisplay>(*aligned, 0);
    expectPosition(at(at<MTMathListDisplay>(rows, 0), 0), {100, 0});
    expectPosition(at(at<MTMathListDisplay>(rows, 0), 1), {150, 0});
    EXPECT_NEAR(at(rows, 0).position().y() - at(rows, 1).position().y(), 150, 1e-9) << "opened by a jot of 30";

    // Rows too high for that are 10 apart: 34.5 + 86.02 + 10.
    const auto high = layout(u"\\begin{matrix}\\frac12\\\\\\frac12\\end{matrix}");
    const auto& fractions = at<MTMathListDisplay>(*high, 0);
    EXPECT_NEAR(at(fractions, 0).position().y() - at(fractions, 1).position().y(), 130.52, 1e-9);
}

TEST(Tables, emptyOnesTakeNoRoom) {
    const MTMathList list(std::make_shared<MTMathTable>());
    expectExtent(*MTTypesetter::createLineForMathList(list, font(), MTLineStyle::display), 0, 0, 0);
    // A row without anything is on the axis.
    expectExtent(*layout(u"\\begin{matrix}\\end{matrix}"), 25, 0, 0);
    const auto blank = layout(u"\\begin{matrix}&\\\\&\\end{matrix}");
    EXPECT_NEAR(blank->width(), 100, 1e-9) << "the room between columns";
}
