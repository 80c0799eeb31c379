#include "MTFont.h"

#include "MTException.h"
#include "MTFontManager.h"
#include "MathFontFiles.h"
#include "MathFontNames.h"
#include "MathFontsBundle.h"
#include "MathTableKeys.h"
#include "PropertyList.h"

#include <QTemporaryDir>

#include <thread>

#include <gtest/gtest.h>

namespace {

class MTFontTest : public testing::Test {
protected:
    /// A list with `key` changed to `value`, over the real one.
    static std::shared_ptr<const MTRawMathTable> listWith(const MTFont& basis, QLatin1String key,
                                                          const QVariant& value) {
        QVariantMap list = PropertyList::fromXml(MathFontFiles::propertyListBytes());
        list.insert(key, value);
        return std::make_shared<const MTRawMathTable>(list, *basis.defaultCGFont());
    }

    static CGGlyph named(const char* name) { return font->glyphWithName(QString::fromLatin1(name)); }

    // The font has a thousand units to the em, so at 100 points a point is ten units.
    static void SetUpTestSuite() { font = std::make_shared<MTFont>(MathFontFiles::latinModern(), 100); }
    static void TearDownTestSuite() { font.reset(); }

    static inline std::shared_ptr<MTFont> font;
};

} // namespace

TEST_F(MTFontTest, constantsOfLatinModern) {
    const MTFontMathTable& table = font->mathTable();
    EXPECT_DOUBLE_EQ(table.axisHeight(), 25);
    EXPECT_DOUBLE_EQ(table.accentBaseHeight(), 45);
    EXPECT_DOUBLE_EQ(table.fractionNumeratorDisplayStyleShiftUp(), 67.7);
    EXPECT_DOUBLE_EQ(table.fractionNumeratorShiftUp(), 39.4);
    EXPECT_DOUBLE_EQ(table.fractionDenominatorDisplayStyleShiftDown(), 68.6);
    EXPECT_DOUBLE_EQ(table.fractionDenominatorShiftDown(), 34.5);
    EXPECT_DOUBLE_EQ(table.fractionNumDisplayStyleGapMin(), 12);
    EXPECT_DOUBLE_EQ(table.fractionNumeratorGapMin(), 4);
    EXPECT_DOUBLE_EQ(table.fractionDenomDisplayStyleGapMin(), 12);
    EXPECT_DOUBLE_EQ(table.fractionDenominatorGapMin(), 4);
    EXPECT_DOUBLE_EQ(table.fractionRuleThickness(), 4);
    EXPECT_DOUBLE_EQ(table.stackTopDisplayStyleShiftUp(), 67.7);
    EXPECT_DOUBLE_EQ(table.stackTopShiftUp(), 44.4);
    EXPECT_DOUBLE_EQ(table.stackBottomDisplayStyleShiftDown(), 68.6);
    EXPECT_DOUBLE_EQ(table.stackBottomShiftDown(), 34.5);
    EXPECT_DOUBLE_EQ(table.stackDisplayStyleGapMin(), 28);
    EXPECT_DOUBLE_EQ(table.stackGapMin(), 12);
    EXPECT_DOUBLE_EQ(table.superscriptShiftUp(), 36.3);
    EXPECT_DOUBLE_EQ(table.superscriptShiftUpCramped(), 28.9);
    EXPECT_DOUBLE_EQ(table.subscriptShiftDown(), 24.7);
    EXPECT_DOUBLE_EQ(table.superscriptBaselineDropMax(), 25);
    EXPECT_DOUBLE_EQ(table.subscriptBaselineDropMin(), 20);
    EXPECT_DOUBLE_EQ(table.superscriptBottomMin(), 10.8);
    EXPECT_DOUBLE_EQ(table.subscriptTopMax(), 34.4);
    EXPECT_DOUBLE_EQ(table.subSuperscriptGapMin(), 16);
    EXPECT_DOUBLE_EQ(table.superscriptBottomMaxWithSubscript(), 34.4);
    EXPECT_DOUBLE_EQ(table.spaceAfterScript(), 5.6);
    EXPECT_DOUBLE_EQ(table.radicalRuleThickness(), 4);
    EXPECT_DOUBLE_EQ(table.radicalExtraAscender(), 4);
    EXPECT_DOUBLE_EQ(table.radicalVerticalGap(), 5);
    EXPECT_DOUBLE_EQ(table.radicalDisplayStyleVerticalGap(), 14.8);
    EXPECT_DOUBLE_EQ(table.radicalKernBeforeDegree(), 27.8);
    EXPECT_DOUBLE_EQ(table.radicalKernAfterDegree(), -55.6);
    EXPECT_DOUBLE_EQ(table.upperLimitGapMin(), 20);
    EXPECT_DOUBLE_EQ(table.upperLimitBaselineRiseMin(), 11.1);
    EXPECT_DOUBLE_EQ(table.lowerLimitGapMin(), 16.7);
    EXPECT_DOUBLE_EQ(table.lowerLimitBaselineDropMin(), 60);
    EXPECT_DOUBLE_EQ(table.overbarVerticalGap(), 12);
    EXPECT_DOUBLE_EQ(table.overbarRuleThickness(), 4);
    EXPECT_DOUBLE_EQ(table.overbarExtraAscender(), 4);
    EXPECT_DOUBLE_EQ(table.underbarVerticalGap(), 12);
    EXPECT_DOUBLE_EQ(table.underbarRuleThickness(), 4);
    EXPECT_DOUBLE_EQ(table.underbarExtraDescender(), 4);
    EXPECT_DOUBLE_EQ(table.minConnectorOverlap(), 2);
    // Fractions do not grow with the size.
    EXPECT_DOUBLE_EQ(table.scriptPercentScaleDown(), 0.7);
    EXPECT_DOUBLE_EQ(table.scriptScriptPercentScaleDown(), 0.5);
    EXPECT_DOUBLE_EQ(table.radicalDegreeBottomRaisePercent(), 0.6);
    EXPECT_DOUBLE_EQ(table.muUnit(), 100.0 / 18);
    EXPECT_DOUBLE_EQ(table.fractionDelimiterSize(), 101);
    EXPECT_DOUBLE_EQ(table.fractionDelimiterDisplayStyleSize(), 239);
}

TEST_F(MTFontTest, constantsByName) {
    const MTFontMathTable& table = font->mathTable();
    EXPECT_DOUBLE_EQ(table.constantFromTable(u"AxisHeight"), 25);
    EXPECT_DOUBLE_EQ(table.constantFromTable(u"DisplayOperatorMinHeight"), 130);
    EXPECT_DOUBLE_EQ(table.percentFromTable(u"ScriptPercentScaleDown"), 0.7);
    EXPECT_EQ(table.constantFromTable(u"NoSuchConstant"), 0);
    EXPECT_EQ(table.percentFromTable(u""), 0);
}

TEST_F(MTFontTest, variantsGrowAndAGlyphWithoutThemStandsForItself) {
    const MTFontMathTable& table = font->mathTable();
    const CGGlyph parenthesis = font->ctFont()->glyph(U'(');
    const auto variants = table.getVerticalVariantsForGlyph(parenthesis);
    ASSERT_EQ(variants.size(), 8U);
    EXPECT_EQ(variants.front(), parenthesis);
    for (std::size_t index = 1; index < variants.size(); ++index) {
        EXPECT_EQ(font->nameForGlyph(variants[index]), QStringLiteral("parenleft.v%1").arg(index));
        EXPECT_GT(font->ctFont()->boundingBox(variants[index]).top,
                  font->ctFont()->boundingBox(variants[index - 1]).top);
    }
    EXPECT_EQ(table.getLargerGlyph(parenthesis), variants[1]);
    EXPECT_EQ(table.getLargerGlyph(named("summation")), named("summation.v1"));

    const CGGlyph hat = font->ctFont()->glyph(U'\u0302');
    const auto hats = table.getHorizontalVariantsForGlyph(hat);
    ASSERT_GT(hats.size(), 1U);
    EXPECT_EQ(hats.front(), hat);
    EXPECT_GT(font->ctFont()->boundingBox(hats[1]).right - font->ctFont()->boundingBox(hats[1]).left,
              font->ctFont()->boundingBox(hat).right - font->ctFont()->boundingBox(hat).left);

    for (const CGGlyph alone : {font->ctFont()->glyph(U'x'), CGGlyph{0}}) {
        EXPECT_EQ(table.getVerticalVariantsForGlyph(alone).size(), 1U);
        EXPECT_EQ(table.getVerticalVariantsForGlyph(alone).front(), alone);
        EXPECT_EQ(table.getHorizontalVariantsForGlyph(alone).front(), alone);
        EXPECT_EQ(table.getLargerGlyph(alone), alone);
        EXPECT_TRUE(table.getVerticalGlyphAssembly(alone).empty());
    }
    EXPECT_EQ(table.getVerticalVariantsForGlyph(0xFFFF).front(), 0);
}

TEST_F(MTFontTest, correctionsAndAccents) {
    const MTFontMathTable& table = font->mathTable();
    const CGGlyph italicF = font->ctFont()->glyph(U'\U0001D453');
    EXPECT_DOUBLE_EQ(table.getItalicCorrection(italicF), 9);
    EXPECT_DOUBLE_EQ(table.getTopAccentAdjustment(italicF), 46.4);
    EXPECT_DOUBLE_EQ(table.getItalicCorrection(named("integral")), 33.2);
    const CGGlyph plus = font->ctFont()->glyph(U'+');
    EXPECT_EQ(table.getItalicCorrection(plus), 0);
    EXPECT_DOUBLE_EQ(table.getTopAccentAdjustment(plus), font->ctFont()->advance(plus) / 2);
    EXPECT_EQ(table.getItalicCorrection(0xFFFF), 0);
}

TEST_F(MTFontTest, assembliesGoFromBottomToTop) {
    const auto parts = font->mathTable().getVerticalGlyphAssembly(font->ctFont()->glyph(U'('));
    const std::vector<GlyphPart> expected{
        {named("uni239D"), 149.5, 0, 24.9, false},
        {named("uni239C"), 49.8, 49.8, 49.8, true},
        {named("uni239B"), 149.5, 24.9, 0, false},
    };
    ASSERT_EQ(parts.size(), expected.size());
    for (std::size_t index = 0; index < parts.size(); ++index) {
        EXPECT_EQ(parts[index].glyph, expected[index].glyph) << index;
        EXPECT_DOUBLE_EQ(parts[index].fullAdvance, expected[index].fullAdvance) << index;
        EXPECT_DOUBLE_EQ(parts[index].startConnectorLength, expected[index].startConnectorLength) << index;
        EXPECT_DOUBLE_EQ(parts[index].endConnectorLength, expected[index].endConnectorLength) << index;
        EXPECT_EQ(parts[index].isExtender, expected[index].isExtender) << index;
    }
}

TEST_F(MTFontTest, aCopyHasItsOwnTableOverTheSameList) {
    const std::shared_ptr<MTFont> copy = font->copy(10);
    EXPECT_EQ(copy->fontSize(), 10);
    EXPECT_EQ(font->fontSize(), 100);
    EXPECT_DOUBLE_EQ(copy->mathTable().axisHeight(), 2.5);
    EXPECT_NE(&copy->mathTable(), &font->mathTable());
    EXPECT_EQ(&copy->mathTable().font(), copy.get());
    EXPECT_EQ(copy->rawMathTable(), font->rawMathTable());
    EXPECT_EQ(copy->defaultCGFont(), font->defaultCGFont());
    EXPECT_EQ(copy->copy(100)->mathTable().axisHeight(), 25);
}

TEST_F(MTFontTest, numbersAreReadAsIntegersAndWhatIsMissingIsZero) {
    const auto list = listWith(*font, MathTableKeys::kConstants,
                               QVariantMap{{QStringLiteral("AxisHeight"), 259.9}, {QStringLiteral("Own"), -3.9}});
    const MTFontMathTable table(*font, list);
    EXPECT_DOUBLE_EQ(table.axisHeight(), 25.9);
    EXPECT_DOUBLE_EQ(table.constantFromTable(u"Own"), -0.3);
    EXPECT_EQ(table.fractionRuleThickness(), 0);
    EXPECT_EQ(table.scriptPercentScaleDown(), 0);
}

TEST_F(MTFontTest, namesThatTheFontDoesNotHaveAreTheMissingGlyph) {
    const auto list =
        listWith(*font, MathTableKeys::kVertVariants,
                 QVariantMap{{QStringLiteral("parenleft"), QVariantList{QStringLiteral("gone")}},
                             {QStringLiteral("gone"), QVariantList{QStringLiteral("A"), QStringLiteral("B")}}});
    const MTFontMathTable table(*font, list);
    EXPECT_EQ(table.getLargerGlyph(named("parenleft")), 0);
    EXPECT_EQ(table.getVerticalVariantsForGlyph(0).size(), 1U);
}

TEST_F(MTFontTest, aTableOfAnotherVersionIsRefused) {
    for (const QVariant& version : {QVariant(QStringLiteral("1.2")), QVariant(QStringLiteral("1.30")), QVariant()}) {
        const auto list = listWith(*font, MathTableKeys::kVersion, version);
        try {
            const MTFontMathTable table(*font, list);
            ADD_FAILURE() << version.toString().toStdString();
        } catch (const MTException& error) {
            EXPECT_EQ(error.reason(), QStringLiteral("Invalid version of math table plist: ") + version.toString());
        }
    }
}

TEST_F(MTFontTest, missingAndDamagedFilesAreErrors) {
    const QTemporaryDir folder;
    const QString name = QStringLiteral("some-math");
    const QString fontPath = MathFontsBundle::fontPath(folder.path(), name);
    const QString listPath = MathFontsBundle::propertyListPath(folder.path(), name);
    const auto error = [&] {
        return MathFontFiles::fontErrorOf([&] { return MTFont(name, 20, folder.path()).fontSize(); });
    };
    using Kind = FontError::Kind;

    EXPECT_EQ(error(), Kind::fontPathNotFound);
    MathFontFiles::write(fontPath, "damaged");
    EXPECT_EQ(error(), Kind::invalidFontFile);
    MathFontFiles::write(fontPath, MathFontFiles::fontBytes());
    EXPECT_EQ(error(), Kind::fontPathNotFound);
    const QByteArray list = MathFontFiles::propertyListBytes();
    MathFontFiles::write(listPath, list.left(list.size() / 2));
    EXPECT_EQ(error(), Kind::invalidMathTable);
    MathFontFiles::write(listPath, QByteArray(list).replace("<string>1.3</string>", "<string>1.4</string>"));
    EXPECT_THROW(MTFont(name, 20, folder.path()), MTException);
    MathFontFiles::write(listPath, list);
    EXPECT_EQ(error(), std::nullopt);
}

TEST_F(MTFontTest, entriesOfAnotherKindAreErrors) {
    using namespace MathTableKeys;
    const QString glyph = QStringLiteral("parenleft");
    const QVariantMap part{{kPartGlyph, glyph}, {kPartAdvance, 5}, {kPartStart, 0}, {kPartExtender, true}};
    const struct {
        QLatin1String key;
        QVariant value;
    } damaged[] = {
        {kConstants, QStringLiteral("none")},
        {kConstants, QVariantMap{{QStringLiteral("AxisHeight"), QStringLiteral("250")}}},
        {kConstants, QVariantMap{{QStringLiteral("AxisHeight"), 1e12}}},
        {kVertVariants, QVariantMap{{glyph, glyph}}},
        {kHorizVariants, QVariantMap{{glyph, QVariantList{7}}}},
        {kItalic, QVariantMap{{glyph, true}}},
        {kAccents, QVariantList{glyph}},
        {kVertAssembly, QVariantMap{{glyph, QVariantMap()}}},
        {kVertAssembly, QVariantMap{{glyph, QVariantMap{{kAssemblyParts, QVariantList{glyph}}}}}},
        {kVertAssembly, QVariantMap{{glyph, QVariantMap{{kAssemblyParts, QVariantList{part}}}}}}, // no end connector
    };
    for (const auto& sample : damaged) {
        const auto read = [&] { return listWith(*font, sample.key, sample.value); };
        EXPECT_EQ(MathFontFiles::fontErrorOf(read), FontError::Kind::invalidMathTable)
            << sample.key.data() << ", the " << &sample - damaged;
    }
}

TEST(MTFontManager, fontsAreReadOnceAndCopiedToSizes) {
    MTFontManager manager;
    const auto font = manager.defaultFont();
    EXPECT_EQ(font->fontSize(), 20);
    EXPECT_EQ(manager.latinModernFont(20), font);
    const auto other = manager.font(MathFontNames::latinModern, 12);
    EXPECT_EQ(other->fontSize(), 12);
    EXPECT_EQ(other->rawMathTable(), font->rawMathTable());

    // Whether a font is there depends on what is installed; a font that is not says so each time.
    for (int attempt = 0; attempt < 2; ++attempt) {
        EXPECT_EQ(MathFontFiles::fontErrorOf([&] { return manager.font(QStringLiteral("no-math"), 20); }),
                  FontError::Kind::fontPathNotFound);
    }
}

TEST(MTFontManager, threadsThatStartTogetherShareOneFont) {
    for (int round = 0; round < 5; ++round) {
        MTFontManager manager;
        std::array<std::shared_ptr<const MTRawMathTable>, 4> tables;
        std::vector<std::thread> threads;
        threads.reserve(tables.size());
        for (auto& table : tables) {
            threads.emplace_back([&, size = 10.0 + static_cast<double>(threads.size())] {
                table = manager.latinModernFont(size)->rawMathTable();
            });
        }
        for (auto& thread : threads)
            thread.join();
        for (const auto& table : tables)
            EXPECT_EQ(table, tables.front());
    }
}
