#include "MTMathAlphabets.h"

#include "MTException.h"

#include <gtest/gtest.h>

using namespace MTMathAlphabets;
using enum MTFontStyle;

TEST(MTMathAlphabets, eachStyleAtTheEndsOfItsRanges) {
    const struct {
        MTFontStyle style;
        QStringView text;
        std::u32string_view styled;
    } rows[] = {
        {italic, u"AZaz", U"\U0001D434\U0001D44D\U0001D44E\U0001D467"},
        {italic, u"ghi09.", U"\U0001D454\u210E\U0001D45609."},
        {italic, u"\u0391\u03A9\u03B1\u03C9", U"\U0001D6E2\U0001D6FA\U0001D6FC\U0001D714"},
        {italic, u"\u03F5\u03D1\u03F0\u03D5\u03F1\u03D6",
         U"\U0001D716\U0001D717\U0001D718\U0001D719\U0001D71A\U0001D71B"},
        {bold, u"AZaz09", U"\U0001D400\U0001D419\U0001D41A\U0001D433\U0001D7CE\U0001D7D7"},
        {bold, u"\u0391\u03A9\u03B1\u03C9\u03F5\u03D6",
         U"\U0001D6A8\U0001D6C0\U0001D6C2\U0001D6DA\U0001D6DC\U0001D6E1"},
        {boldItalic, u"Aa0h", U"\U0001D468\U0001D482\U0001D7CE\U0001D489"},
        {boldItalic, u"\u0391\u03B1\u03F5", U"\U0001D71C\U0001D736\U0001D750"},
        {caligraphic, u"ABEFHILMRZ", U"\U0001D49C\u212C\u2130\u2131\u210B\u2110\u2112\u2133\u211B\U0001D4B5"},
        {caligraphic, u"bego1\u0393\u03B1", U"\U0001D44F\u212F\u210A\u21341\u0393\U0001D6FC"},
        {typewriter, u"AZaz09", U"\U0001D670\U0001D689\U0001D68A\U0001D6A3\U0001D7F6\U0001D7FF"},
        {typewriter, u"\u0393\u03B1.", U"\u0393\U0001D6FC."},
        {sansSerif, u"AZaz09", U"\U0001D5A0\U0001D5B9\U0001D5BA\U0001D5D3\U0001D7E2\U0001D7EB"},
        {fraktur, u"ABCHIRZaz1", U"\U0001D504\U0001D505\u212D\u210C\u2111\u211C\u2128\U0001D51E\U0001D5371"},
        {blackboard, u"ACHNPQRZaz1",
         U"\U0001D538\u2102\u210D\u2115\u2119\u211A\u211D\u2124\U0001D552\U0001D56B\U0001D7D9"},
        {defaultStyle, u"Az0.h\u0393\u03B1\u03F5", U"\U0001D434\U0001D4670.\u210E\u0393\U0001D6FC\U0001D716"},
        {roman, u"Ah\u03B1+\u00E9", U"Ah\u03B1+\u00E9"},
        {bold, u"+\u00E9", U"+\u00E9"},
        {bold, u"", U""},
    };
    for (const auto& [style, text, styled] : rows) {
        EXPECT_EQ(changeFont(text.toString(), style), QString::fromUcs4(styled.data(), qsizetype(styled.size())))
            << int(style) << ' ' << text.toUtf8().constData();
    }
}

TEST(MTMathAlphabets, theDefaultStyleKnowsOnlyWhatVariablesAndNumbersAreMadeOf) {
    const auto reasonFor = [](QStringView text, MTFontStyle style) -> QString {
        try {
            static_cast<void>(changeFont(text.toString(), style));
        } catch (const MTException& exception) {
            return exception.reason();
        }
        return {};
    };
    EXPECT_EQ(reasonFor(u"+", defaultStyle), u"Unknown character + for default style.");
    EXPECT_EQ(reasonFor(u"\u0416", fraktur), u"Unknown character \u0416 for default style.");
    EXPECT_EQ(reasonFor(u"+", italic), QString());
    // A letter with a mark is one character, and none of the alphabets'.
    EXPECT_EQ(changeFont(QStringLiteral("x\u0323\u0301"), bold), u"x\u0323\u0301");
}
