// The way through a list: runs of text, spaces, styles, scripts and colours.

#include "MTTypesetter.h"

#include "FormulaLayout.h"
#include "MTCTLineDisplay.h"
#include "MTException.h"
#include "MTFont.h"
#include "MTFractionDisplay.h"
#include "MTMathAtom.h"
#include "MTMathList.h"
#include "MTMathListBuilder.h"

#include <gtest/gtest.h>

using namespace FormulaLayout;
using enum MTMathListDisplay::LinePosition;

TEST(MTTypesetter, anEmptyListIsAnEmptyBox) {
    const auto display = layout(u"");
    expectExtent(*display, 0, 0, 0);
    EXPECT_EQ(display->range(), (MTRange{0, 0}));
    EXPECT_TRUE(display->subDisplays().empty());
}

TEST(MTTypesetter, textBetweenConstructionsIsOneRun) {
    const auto display = layout(u"2xy+\\Gamma=1.5\\frac12b");
    ASSERT_EQ(display->subDisplays().size(), 3U);
    EXPECT_EQ(display->range(), (MTRange{0, 11}));

    const auto& line = at<MTCTLineDisplay>(*display, 0);
    EXPECT_EQ(line.line().text, u"2\U0001D465\U0001D466+\u0393=1.5");
    EXPECT_EQ(line.range(), (MTRange{0, 9}));
    EXPECT_EQ(line.atoms().size(), 9U) << "those that were fused stand one by one";
    // The outlines reach from the descender of y to the top of Γ.
    expectPosition(line, {0, 0});
    EXPECT_NEAR(line.descent(), -font()->ctFont()->boundingBox(font()->ctFont()->glyph(U'\U0001D466')).bottom, 1e-9);
    // Each glyph begins where the one before ends, but for the spaces: 50 + 57.2, then y and +.
    ASSERT_EQ(line.line().glyphs.size(), 9U);
    EXPECT_NEAR(line.line().glyphs[2].x, 107.2, 1e-9);
    EXPECT_NEAR(line.line().glyphs[4].x - line.line().glyphs[3].x, 77.8 + 4 * 100.0 / 18, 1e-9);

    expectPosition(at<MTFractionDisplay>(*display, 1), {line.width() + 3 * 100.0 / 18, 0});
    EXPECT_EQ(at<MTCTLineDisplay>(*display, 2).line().text, u"\U0001D44F");
    EXPECT_EQ(at(*display, 2).range(), (MTRange{10, 1}));
}

TEST(MTTypesetter, theListThatIsLaidOutStaysAsItIs) {
    const auto list = MTMathListBuilder::build(u"\\hat{x}^2+ab-\\frac{12}{c}");
    const QString before = list->description();
    const auto first = MTTypesetter::createLineForMathList(*list, font(), MTLineStyle::display);
    const auto second = MTTypesetter::createLineForMathList(*list, font(), MTLineStyle::display);
    EXPECT_EQ(list->description(), before);
    EXPECT_DOUBLE_EQ(first->width(), second->width());
}

TEST(MTTypesetter, spacesEndARunAndStylesChangeTheSize) {
    const auto spaced = layout(u"a\\,b");
    ASSERT_EQ(spaced->subDisplays().size(), 2U);
    expectPosition(at(*spaced, 1), {52.9 + 3 * 100.0 / 18, 0});

    const auto styled = layout(u"a\\scriptstyle a\\scriptscriptstyle a\\textstyle a");
    ASSERT_EQ(styled->subDisplays().size(), 4U);
    const double sizes[] = {100, 70, 50, 100};
    double x = 0;
    for (std::size_t i = 0; i < 4; ++i) {
        const auto& line = at<MTCTLineDisplay>(*styled, i);
        EXPECT_DOUBLE_EQ(line.font()->fontSize(), sizes[i]);
        expectPosition(line, {x, 0});
        expectExtent(line, 0.442 * sizes[i], 0.011 * sizes[i], 0.529 * sizes[i]);
        x += line.width();
    }
    // A style holds to the end of its list only.
    EXPECT_NEAR(layout(u"\\frac{\\scriptstyle 1}{1}1")->width(), 50 + 3 * 100.0 / 18 + 50, 1e-9);
}

TEST(MTTypesetter, scriptsOfLetters) {
    // f is 49 wide and leans by 9, x doesn't. A 2 in a script is 35 wide and 46.62 high.
    const struct {
        QStringView source;
        MTLineStyle style;
        QPointF super; ///< null point for none
        QPointF sub;
        double width;
    } rows[] = {
        {u"x^2", MTLineStyle::display, {57.2, 36.3}, {}, 57.2 + 35 + 5.6},
        {u"x_2", MTLineStyle::display, {}, {57.2, -24.7}, 57.2 + 35 + 5.6},
        {u"f^2", MTLineStyle::display, {58, 36.3}, {}, 58 + 35 + 5.6},
        {u"f_2", MTLineStyle::display, {}, {49, -24.7}, 49 + 35 + 5.6},
        // 36.3 + 24.7 leave 14.38 between the scripts: the subscript goes down by 1.62.
        {u"f_2^2", MTLineStyle::text, {58, 36.3}, {49, -26.32}, 58 + 35 + 5.6},
        {u"^2", MTLineStyle::display, {0, 36.3}, {}, 35 + 5.6},
        // In a script the scripts are at 50 points, and the shifts those of 70.
        {u"x^2", MTLineStyle::script, {40.04, 25.41}, {}, 40.04 + 25 + 3.92},
        {u"x^2", MTLineStyle::scriptOfScript, {28.6, 18.15}, {}, 28.6 + 25 + 2.8},
    };
    for (const auto& [source, style, super, sub, width] : rows) {
        SCOPED_TRACE(source.toUtf8().constData());
        const auto display = layout(source, style);
        const bool hasBoth = !super.isNull() && !sub.isNull();
        ASSERT_EQ(display->subDisplays().size(), hasBoth ? 3U : 2U);
        EXPECT_TRUE(at(*display, 0).hasScript());
        if (!super.isNull()) {
            const auto& script = at<MTMathListDisplay>(*display, 1);
            EXPECT_EQ(script.type(), superscript);
            EXPECT_EQ(script.index(), 0);
            expectPosition(script, super);
        }
        if (!sub.isNull()) {
            const auto& script = at<MTMathListDisplay>(*display, hasBoth ? 2 : 1);
            EXPECT_EQ(script.type(), ssubscript);
            expectPosition(script, sub);
        }
        // The room behind a script shows in what follows.
        const auto followed = layout(QString(source.toString() + u'|'), style);
        EXPECT_NEAR(at(*followed, followed->subDisplays().size() - 1).position().x(), width, 1e-9);
    }
    const auto empty = layout(u"^2");
    expectExtent(at<MTCTLineDisplay>(*empty, 0), 0, 0, 0);
}

TEST(MTTypesetter, crampedScriptsAreLower) {
    const auto frac = layout(u"\\frac{x^2}{x_1^2}");
    const auto& fraction = at<MTFractionDisplay>(*frac, 0);
    expectPosition(at(fraction.numerator(), 1), {57.2, 36.3});
    // 28.9 and 24.7 leave 6.98, so the subscript goes down to 33.72; then both go up by 5.5, to the superscript's
    // lowest place beside a subscript.
    expectPosition(at(fraction.denominator(), 1), {57.2, 34.4});
    expectPosition(at(fraction.denominator(), 2), {57.2, -28.22});
    // A subscript is cramped, a superscript as what it is on.
    const auto nested = layout(u"x_{x^2}+x^{x^2}");
    expectPosition(at(at<MTMathListDisplay>(*nested, 1), 1), {0.7 * 57.2, 0.7 * 28.9});
    expectPosition(at(at<MTMathListDisplay>(*nested, 3), 1), {0.7 * 57.2, 0.7 * 36.3});
}

TEST(MTTypesetter, highAndDeepScriptsKeepTheirDistance) {
    // The superscript's depth below its baseline decides: its bottom stays 10.8 above the baseline.
    const auto deep = layout(u"x^{\\frac1{\\frac12}}");
    const auto& super = at<MTMathListDisplay>(*deep, 1);
    expectPosition(super, {57.2, super.descent() + 10.8});
    // And the subscript's top at most 34.4 above it.
    const auto high = layout(u"x_{\\frac12}");
    const auto& sub = at<MTMathListDisplay>(*high, 1);
    expectPosition(sub, {57.2, -(sub.ascent() - 34.4)});
    // The scripts of a box hang on its corners: 25 and 20 thousandths of the script's em from them.
    const auto box = layout(u"\\frac12_a^b");
    expectPosition(at(*box, 1), {50, 134.3 - 17.5});
    expectPosition(at(*box, 2), {50, -(68.6 + 14)});
}

TEST(MTTypesetter, coloursColourWhatTheyHold) {
    const auto display = layout(u"a\\color{#FF0000}{b=\\textcolor{#0000ff}{c}}\\colorbox{#00ff00}{d}\\color{red}{e}");
    ASSERT_EQ(display->subDisplays().size(), 4U);
    const auto& colored = at<MTMathListDisplay>(*display, 1);
    expectPosition(colored, {52.9, 0});
    display->setTextColor(Qt::gray);
    EXPECT_EQ(at(*display, 0).textColor(), Qt::gray);
    EXPECT_EQ(at(colored, 0).textColor(), Qt::red);
    EXPECT_EQ(at(at<MTMathListDisplay>(colored, 1), 0).textColor(), QColor(0, 0, 255)) << "the inner colour wins";
    EXPECT_EQ(at(*display, 2).localBackgroundColor(), QColor(Qt::green));
    EXPECT_EQ(at(*display, 2).textColor(), Qt::gray);
    EXPECT_FALSE(at(*display, 3).localTextColor()) << "names of colours are not known";
    EXPECT_EQ(at(*display, 3).textColor(), Qt::gray);
}

TEST(MTTypesetter, onlyTextcolorIsSpacedAsItsText) {
    constexpr double mu = 100.0 / 18;
    const auto positionOfColored = [](QStringView source) {
        const auto display = layout(source);
        return at<MTMathListDisplay>(*display, 1).position().x();
    };
    EXPECT_NEAR(positionOfColored(u"a\\textcolor{#f00}{=b}"), 52.9 + 5 * mu, 1e-9);
    EXPECT_NEAR(positionOfColored(u"=\\textcolor{#f00}{12}"), 77.8 + 5 * mu, 1e-9);
    EXPECT_NEAR(positionOfColored(u"a\\textcolor{#f00}{\\scriptstyle\\frac12}"), 52.9 + 3 * mu, 1e-9);
    EXPECT_NEAR(positionOfColored(u"a\\textcolor{#f00}{}"), 52.9, 1e-9);
    EXPECT_NEAR(positionOfColored(u"a\\color{#f00}{=b}"), 52.9, 1e-9);
    EXPECT_NEAR(positionOfColored(u"a\\colorbox{#f00}{=b}"), 52.9, 1e-9);
}

TEST(MTTypesetter, lettersKeepTheirItalicCorrectionFromTheNextLetterOnly) {
    // f is 49 wide and leans over by 9, a parenthesis is 38.9 wide, an upright f 30.6.
    const struct {
        QStringView source;
        double width;
    } rows[] = {
        {u"f(", 49 + 38.9},
        {u"f1", 49 + 50},
        {u"ff", 49 + 9 + 49},
        {u"\\hat{ff}(", 49 + 9 + 49 + 38.9},
        {u"f\\sum\\nolimits", 49 + 300.0 / 18 + 144.4},
        {u"\\mathrm{ff}", 30.6 + 30.6},
        {u"\\text{if }", 27.8 + 30.6 + 33.2},
    };
    for (const auto& [source, width] : rows)
        EXPECT_NEAR(layout(source)->width(), width, 1e-6) << source.toUtf8().constData();
    // A list is as wide as its boxes reach: room behind scripts and spaces at its end are none.
    EXPECT_NEAR(layout(u"f^1")->width(), 49 + 9 + 35, 1e-6);
    EXPECT_NEAR(layout(u"\\frac{1\\quad}2")->width(), 50, 1e-6);
}

TEST(MTTypesetter, placeholdersAreBlueUntilTheTextGetsAColour) {
    const auto list = std::make_shared<MTMathList>();
    list->add(std::make_shared<MTMathAtom>(MTMathAtomType::open, QStringLiteral("(")));
    list->add(std::make_shared<MTMathAtom>(MTMathAtomType::placeholder, QStringLiteral("\u25A1")));
    const auto display = MTTypesetter::createLineForMathList(*list, font(), MTLineStyle::display);
    const auto& line = at<MTCTLineDisplay>(*display, 0);
    ASSERT_EQ(line.line().colors.size(), 1U);
    EXPECT_EQ(line.line().colors[0].first, 1U);
    EXPECT_EQ(line.line().colors[0].end, 2U);
    EXPECT_EQ(line.line().colors[0].color, Qt::blue);
    display->setTextColor(Qt::red);
    EXPECT_TRUE(line.line().colors.empty());
}

TEST(MTTypesetter, whatIsNoFormulaAtAllRaises) {
    const auto reasonFor = [](std::shared_ptr<MTMathAtom> atom) -> QString {
        try {
            static_cast<void>(
                MTTypesetter::createLineForMathList(MTMathList(std::move(atom)), font(), MTLineStyle::display));
        } catch (const MTException& exception) {
            return exception.reason();
        }
        return {};
    };
    EXPECT_EQ(reasonFor(std::make_shared<MTMathAtom>(MTMathAtomType::variable, QStringLiteral("+"))),
              u"Unknown character + for default style.");
    EXPECT_EQ(reasonFor(std::make_shared<MTMathAtom>(MTMathAtomType::fraction)),
              u"An atom is not of the class of its type Fraction");
}
