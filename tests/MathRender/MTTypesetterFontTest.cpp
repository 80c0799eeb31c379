// Layout in fonts that say other things than Latin Modern Math, or less.

#include "FormulaLayout.h"
#include "MTFont.h"
#include "MTGlyphDisplay.h"
#include "MTLineDisplay.h"
#include "MathFontFiles.h"
#include "MathTableKeys.h"
#include "PropertyList.h"

#include <gtest/gtest.h>

#include <cmath>

using namespace FormulaLayout;

namespace {

/// Latin Modern Math with another property list.
class AlteredFont final : public MTFont {
public:
    AlteredFont(std::shared_ptr<const MTRawMathTable> list, std::shared_ptr<const CTFont> ctFont)
        : MTFont(std::move(ctFont)), m_list(std::move(list)), m_table(*this, m_list) {}

    [[nodiscard]] std::shared_ptr<MTFont> copy(double size) const override {
        return std::make_shared<AlteredFont>(m_list, std::make_shared<const CTFont>(defaultCGFont(), size));
    }
    [[nodiscard]] const MTFontMathTable& mathTable() const override { return m_table; }
    [[nodiscard]] std::shared_ptr<const MTRawMathTable> rawMathTable() const override { return m_list; }

private:
    std::shared_ptr<const MTRawMathTable> m_list;
    MTFontMathTable m_table;
};

/// At 100 points, with the section `key` of the list changed by `change`.
template <typename Change>
std::shared_ptr<const MTFont> fontWith(QLatin1String key, Change change) {
    QVariantMap list = PropertyList::fromXml(MathFontFiles::propertyListBytes());
    QVariantMap section = list.value(key).toMap();
    change(section);
    list.insert(key, section);
    const auto original = font();
    return std::make_shared<AlteredFont>(std::make_shared<const MTRawMathTable>(list, *original->defaultCGFont()),
                                         original->ctFont());
}

} // namespace

TEST(TypesetterFonts, aLineOverAListIsAsThickAsOneUnderIt) {
    const auto altered = fontWith(MathTableKeys::kConstants, [](QVariantMap& constants) {
        constants[QStringLiteral("OverbarRuleThickness")] = 100;
        constants[QStringLiteral("UnderbarRuleThickness")] = 20;
    });
    const auto display = layout(u"\\overline x", MTLineStyle::display, altered);
    const auto& overline = at<MTLineDisplay>(*display, 0);
    EXPECT_NEAR(overline.lineThickness(), 2, 1e-9);
    EXPECT_NEAR(overline.ascent(), 44.2 + 12 + 10 + 4, 1e-9);
}

TEST(TypesetterFonts, constantsThatAreMissingAreZero) {
    const auto altered = fontWith(MathTableKeys::kConstants, [](QVariantMap& constants) { constants.clear(); });
    const auto fraction = layout(u"\\frac12", MTLineStyle::display, altered);
    EXPECT_NEAR(fraction->ascent(), 66.6, 1e-9) << "on the rule, which is on the baseline";
    EXPECT_NEAR(fraction->descent(), 66.6, 1e-9);
    // Scripts are of size 0 then, and all else goes on.
    const auto everything = layout(u"x_1^2\\sum_1^2\\sqrt[3]{\\hat x}\\left(\\begin{matrix}1\\\\2\\\\3\\\\4\\\\5"
                                   u"\\end{matrix}\\right\\}\\binom12\\overline{\\underline{x}}",
                                   MTLineStyle::display, altered);
    EXPECT_TRUE(std::isfinite(everything->width()));
    EXPECT_GT(everything->width(), 300);
}

TEST(TypesetterFonts, theLastVariantStandsWhereNothingCanBeBuilt) {
    const auto altered = fontWith(MathTableKeys::kVertAssembly, [](QVariantMap& assemblies) { assemblies.clear(); });
    const auto display =
        layout(u"\\left(\\begin{matrix}1\\\\1\\\\1\\\\1\\\\1\\end{matrix}\\right|", MTLineStyle::display, altered);
    const auto& group = at<MTMathListDisplay>(*display, 0);
    const auto& parenthesis = at<MTGlyphDisplay>(group, 0);
    EXPECT_EQ(parenthesis.font()->nameForGlyph(parenthesis.glyph()), u"parenleft.v7");
    EXPECT_NEAR(parenthesis.ascent() - 25, parenthesis.descent() + 25, 1e-9);
}

TEST(TypesetterFonts, charactersThatTheFontLacksShowItsMissingGlyph) {
    const auto display = layout(u"\\text{\u0416}");
    ASSERT_EQ(font()->ctFont()->glyph(U'\u0416'), 0);
    EXPECT_NEAR(display->width(), font()->ctFont()->advance(0), 1e-9);
    EXPECT_GT(display->width(), 0);
}
