#include "MTInterElementSpace.h"

#include "FormulaLayout.h"
#include "MTCTLineDisplay.h"

#include <gtest/gtest.h>

#include <array>
#include <string_view>

using namespace FormulaLayout;

TEST(MTInterElementSpace, theTableOfAllNeighbours) {
    using enum MTMathAtomType;
    constexpr std::array<MTMathAtomType, 9> types{ordinary, largeOperator, binaryOperator, relation, open,
                                                  close,    punctuation,   inner,          radical};
    // In mu for text, as the TeXbook prints it: in brackets what script styles leave out, and * where TeX never asks.
    constexpr std::array<std::array<std::string_view, 8>, 9> spaces{{
        {"0", "3", "(4)", "(5)", "0", "0", "0", "(3)"},
        {"3", "3", "*", "(5)", "0", "0", "0", "(3)"},
        {"(4)", "(4)", "*", "*", "(4)", "*", "*", "(4)"},
        {"(5)", "(5)", "*", "0", "(5)", "0", "0", "(5)"},
        {"0", "0", "*", "0", "0", "0", "0", "0"},
        {"0", "3", "(4)", "(5)", "0", "0", "0", "(3)"},
        {"(3)", "(3)", "*", "(3)", "(3)", "(3)", "(3)", "(3)"},
        {"(3)", "3", "(4)", "(5)", "(3)", "0", "(3)", "(3)"},
        {"(4)", "(3)", "(4)", "(5)", "0", "0", "0", "(3)"},
    }};
    for (std::size_t left = 0; left < spaces.size(); ++left) {
        for (std::size_t right = 0; right < spaces[left].size(); ++right) {
            const std::string_view entry = spaces[left][right];
            const bool isBracketed = entry.front() == '(';
            const int inText = entry == "*" ? -1 : entry[isBracketed ? 1 : 0] - '0';
            const InterElementSpaceType type = MTInterElementSpace::between(types[left], types[right]);
            for (const MTLineStyle style : {MTLineStyle::display, MTLineStyle::text})
                EXPECT_EQ(MTInterElementSpace::spacingInMu(type, style), inText) << left << ' ' << right;
            for (const MTLineStyle style : {MTLineStyle::script, MTLineStyle::scriptOfScript})
                EXPECT_EQ(MTInterElementSpace::spacingInMu(type, style), isBracketed ? 0 : inText);
        }
    }
}

TEST(MTInterElementSpace, typesThatCountAsOthersAndThoseThatDoNot) {
    using enum MTMathAtomType;
    for (const MTMathAtomType type : {placeholder, color, textcolor, colorBox, number, variable, unaryOperator}) {
        EXPECT_EQ(MTInterElementSpace::between(type, relation), InterElementSpaceType::nsThick);
        EXPECT_EQ(MTInterElementSpace::between(relation, type), InterElementSpaceType::nsThick);
    }
    EXPECT_EQ(MTInterElementSpace::between(fraction, largeOperator), InterElementSpaceType::thin);
    for (const MTMathAtomType type : {radical, table, space, style, boundary, accent})
        EXPECT_EQ(MTInterElementSpace::between(ordinary, type), InterElementSpaceType::invalid);
    EXPECT_EQ(MTInterElementSpace::between(table, ordinary), InterElementSpaceType::invalid);
}

TEST(MTInterElementSpace, neighboursInAFormula) {
    constexpr double mu = 100.0 / 18;
    // Widths of a, b: 52.9, 42.9; of + and =: 77.8; of 1: 50.
    const struct {
        QStringView source;
        double width;
    } inDisplay[] = {
        {u"ab", 95.8},
        {u"a+b", 52.9 + 4 * mu + 77.8 + 4 * mu + 42.9},
        {u"a=b", 52.9 + 5 * mu + 77.8 + 5 * mu + 42.9},
        {u"+b", 77.8 + 42.9}, // a sign
        {u"a=+b", 52.9 + 5 * mu + 77.8 + 5 * mu + 77.8 + 42.9},
        {u"a\\frac11", 52.9 + 3 * mu + 50},
        {u"\\frac11a", 50 + 3 * mu + 52.9},
        {u"\\frac11\\frac11", 50 + 3 * mu + 50},
        {u"a\\sqrt1", 52.9 + 83.3 + 50},
        {u"\\sqrt1a", 83.3 + 50 + 4 * mu + 52.9},
        {u"a\\overline b", 95.8},
        {u"\\underline a=\\hat b", 52.9 + 5 * mu + 77.8 + 5 * mu + 42.9},
        {u"a\\begin{matrix}1\\end{matrix}a", 52.9 + 3 * mu + 50 + 3 * mu + 52.9},
        {u"a\\,b", 95.8 + 3 * mu},
        {u"a\\;=b", 52.9 + 5 * mu + 5 * mu + 77.8 + 5 * mu + 42.9}, // the space comes on top
        {u"a\\!b", 95.8 - 3 * mu},
        {u"a\\displaystyle=b", 52.9 + 5 * mu + 77.8 + 5 * mu + 42.9},
    };
    for (const auto& [source, width] : inDisplay)
        EXPECT_NEAR(layout(source)->width(), width, 1e-9) << source.toUtf8().constData();

    // In script styles at 70 points, only the space of an operator is left.
    const struct {
        QStringView source;
        double width;
    } inScript[] = {
        {u"a+b", 0.7 * (52.9 + 77.8 + 42.9)},
        {u"a=b", 0.7 * (52.9 + 77.8 + 42.9)},
        {u"a\\sum", 0.7 * (52.9 + 3 * mu + 105.6)},
        {u"a\\;b", 0.7 * (95.8 + 5 * mu)},
    };
    for (const auto& [source, width] : inScript)
        EXPECT_NEAR(layout(source, MTLineStyle::script)->width(), width, 1e-9) << source.toUtf8().constData();
}

TEST(MTInterElementSpace, delimitersAddTheSpaceOfTheListsEnds) {
    // A comma keeps its distance from the delimiter behind it, inside the delimiters only. Both are 27.8 wide.
    const double bare = layout(u",")->width();
    const auto delimited = layout(u"\\left(,\\right)");
    const double parentheses = 2 * 38.9;
    EXPECT_NEAR(delimited->width() - parentheses, bare + 3 * 100.0 / 18, 1e-9);
}
