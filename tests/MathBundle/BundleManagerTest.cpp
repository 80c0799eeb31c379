#include "BundleManager.h"

#include "CTFont.h"
#include "MTException.h"
#include "MTFontMathTableV2.h"
#include "MTFontV2.h"
#include "MathFontFiles.h"
#include "MathFontsBundle.h"

#include <QPainterPath>
#include <QTemporaryDir>

#include <array>
#include <thread>
#include <tuple>

#include <gtest/gtest.h>

namespace {

template <typename Work>
void onFourThreads(Work work) {
    std::array<std::jthread, 4> threads;
    for (std::size_t index = 0; index < threads.size(); ++index)
        threads[index] = std::jthread([work, index] { work(index); });
}

} // namespace

TEST(BundleManager, fourThreadsGetTheSameFontAtEachSize) {
    BundleManager manager(MathFontsBundle::folder());
    std::array<std::shared_ptr<const CTFont>, 4> fonts;
    onFourThreads([&](std::size_t index) { fonts[index] = manager.ctFont(MathFont::latinModernFont, 15); });
    for (const auto& font : fonts)
        EXPECT_EQ(font, fonts.front());
    EXPECT_EQ(fonts.front()->cgFont(), manager.cgFont(MathFont::latinModernFont));
    EXPECT_EQ(manager.rawMathTable(MathFont::latinModernFont), manager.rawMathTable(MathFont::latinModernFont));
    const auto other = manager.ctFont(MathFont::latinModernFont, 15.5);
    EXPECT_NE(other, fonts.front());
    EXPECT_EQ(other->size(), 15.5);
}

TEST(BundleManager, missingAndDamagedFilesAreErrorsUntilTheyAreRepaired) {
    const QTemporaryDir folder;
    BundleManager manager(folder.path());
    const MathFont font = MathFont::garamondFont;
    const QString fontPath = MathFontsBundle::fontPath(folder.path(), fontName(font));
    const QString listPath = MathFontsBundle::propertyListPath(folder.path(), fontName(font));
    const auto error = [&] { return MathFontFiles::fontErrorOf([&] { return manager.ctFont(font, 20); }); };
    using Kind = FontError::Kind;

    EXPECT_EQ(error(), Kind::fontPathNotFound);
    const std::tuple<QString, QByteArray, Kind> steps[] = {
        {fontPath, MathFontFiles::fontBytes().left(1000), Kind::invalidFontFile},
        {fontPath, MathFontFiles::fontBytes(), Kind::fontPathNotFound},
        {listPath, "<plist><dict><key>version</key>", Kind::invalidMathTable},
        {listPath,
         "<plist><dict><key>version</key><string>1.3</string><key>constants</key><integer>1</integer></dict></plist>",
         Kind::invalidMathTable}};
    for (const auto& [path, bytes, kind] : steps) {
        MathFontFiles::write(path, bytes);
        EXPECT_EQ(error(), kind) << bytes.left(100).constData();
    }
    MathFontFiles::write(listPath, "<plist><dict><key>version</key><string>2.0</string></dict></plist>");
    EXPECT_THROW((void)manager.rawMathTable(font), MTException) << "a table of another version";
    EXPECT_THROW(MTFontV2(font, 20, manager), MTException);
    MathFontFiles::write(listPath, MathFontFiles::propertyListBytes());
    EXPECT_DOUBLE_EQ(MTFontV2(font, 20, manager).mathTable().axisHeight(), 5);
}

TEST(MTFontV2, measuresAsTheFontThatIsReadDirectly) {
    BundleManager manager(MathFontsBundle::folder());
    const MTFontV2 font(MathFont::latinModernFont, 15, manager);
    const MTFont direct(fontName(MathFont::latinModernFont), 15);
    const CGGlyph glyph = font.ctFont()->glyph(U'\u222B');
    EXPECT_EQ(font.mathTable().getItalicCorrection(glyph), direct.mathTable().getItalicCorrection(glyph));
    EXPECT_EQ(font.mathTable().getLargerGlyph(glyph), direct.glyphWithName(QStringLiteral("integral.v1")));

    const std::shared_ptr<MTFont> copy = font.copy(30);
    ASSERT_NE(dynamic_cast<const MTFontV2*>(copy.get()), nullptr);
    EXPECT_DOUBLE_EQ(copy->mathTable().axisHeight(), 7.5);
    EXPECT_EQ(&copy->mathTable().font(), copy.get());
    EXPECT_EQ(copy->rawMathTable(), font.rawMathTable());
    EXPECT_EQ(dynamic_cast<const MTFontMathTableV2&>(copy->mathTable()).mathFont(), MathFont::latinModernFont);
}

// Each thread asks a font that nobody has used yet for all there is to know of a glyph, in an order of its own.
TEST(MTFontV2, fourThreadsMeasureWithOneFont) {
    BundleManager manager(MathFontsBundle::folder());
    BundleManager untouched(MathFontsBundle::folder());
    const MTFontV2 font(MathFont::latinModernFont, 20, manager);
    const MTFontV2 expected(MathFont::latinModernFont, 20, untouched);
    const int count = font.defaultCGFont()->numberOfGlyphs();
    using Measures = std::vector<std::pair<GlyphBox, int>>;
    const auto measures = [count](const MTFontV2& measured, int step) {
        Measures all(static_cast<std::size_t>(count));
        for (int turn = 0; turn < count; ++turn) {
            const auto glyph = static_cast<CGGlyph>(turn * step % count);
            all[glyph] = {measured.ctFont()->boundingBox(glyph),
                          measured.defaultCGFont()->glyphPath(glyph).elementCount()};
        }
        return all;
    };
    std::array<Measures, 4> found;
    std::array<const MTFontMathTable*, 4> tables{};
    onFourThreads([&](std::size_t thread) {
        // No factor in common with 4802, the number of glyphs, so that each order meets all of them.
        constexpr std::array steps{1, 5, 11, 13};
        tables[thread] = &font.mathTable();
        found[thread] = measures(font, steps[thread]);
    });
    for (std::size_t thread = 0; thread < found.size(); ++thread) {
        EXPECT_TRUE(found[thread] == measures(expected, 1)) << thread;
        EXPECT_EQ(tables[thread], &font.mathTable());
    }
}
