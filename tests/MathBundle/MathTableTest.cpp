#include "BundleManager.h"
#include "CGFont.h"
#include "MTFontV2.h"
#include "MTRawMathTable.h"
#include "MathFontFiles.h"
#include "MathFontsBundle.h"

#include <QFile>
#include <QProcess>
#include <QTemporaryDir>

#include <memory>
#include <tuple>

#include <gtest/gtest.h>

#include <hb-ot.h>
#include <hb.h>

namespace {

/// Of an assembly: glyph, advance, lengths of the connectors, whether it may be left out or repeated.
using Part = std::tuple<unsigned, int, int, int, bool>;

/// A font file as the library reads it, in font units.
class ReferenceFont {
public:
    explicit ReferenceFont(const QString& path) {
        hb_blob_t* blob = hb_blob_create_from_file(QFile::encodeName(path).constData());
        hb_face_t* face = hb_face_create(blob, 0);
        font.reset(hb_font_create(face));
        hb_face_destroy(face);
        hb_blob_destroy(blob);
    }

    /// A glyph that the table says nothing of has itself as its only variant.
    [[nodiscard]] std::vector<CGGlyph> variants(hb_codepoint_t glyph, hb_direction_t direction) const {
        std::vector<hb_ot_math_glyph_variant_t> found(100);
        auto count = static_cast<unsigned>(found.size());
        hb_ot_math_get_glyph_variants(font.get(), glyph, direction, 0, &count, found.data());
        std::vector<CGGlyph> result;
        for (unsigned index = 0; index < count; ++index)
            result.push_back(static_cast<CGGlyph>(found[index].glyph));
        return count > 0 ? result : std::vector{static_cast<CGGlyph>(glyph)};
    }
    [[nodiscard]] std::vector<Part> parts(hb_codepoint_t glyph) const {
        std::vector<hb_ot_math_glyph_part_t> found(100);
        auto count = static_cast<unsigned>(found.size());
        hb_ot_math_get_glyph_assembly(font.get(), glyph, HB_DIRECTION_TTB, 0, &count, found.data(), nullptr);
        std::vector<Part> result;
        for (unsigned index = 0; index < count; ++index)
            result.emplace_back(found[index].glyph, found[index].full_advance, found[index].start_connector_length,
                                found[index].end_connector_length,
                                (found[index].flags & HB_OT_MATH_GLYPH_PART_FLAG_EXTENDER) != 0);
        return result;
    }

    std::unique_ptr<hb_font_t, decltype(&hb_font_destroy)> font{nullptr, &hb_font_destroy};
};

/// Every value of `table` against the font file.
void expectSameTable(const ReferenceFont& reference, const CGFont& font, const MTRawMathTable& table) {
    for (int which = 0; which < static_cast<int>(MTMathConstant::minConnectorOverlap); ++which)
        EXPECT_EQ(table.constant(static_cast<MTMathConstant>(which)),
                  hb_ot_math_get_constant(reference.font.get(), static_cast<hb_ot_math_constant_t>(which)))
            << which;
    EXPECT_EQ(table.constant(MTMathConstant::minConnectorOverlap),
              hb_ot_math_get_min_connector_overlap(reference.font.get(), HB_DIRECTION_TTB));

    int assemblies = 0;
    for (unsigned index = 0; index < hb_face_get_glyph_count(hb_font_get_face(reference.font.get())); ++index) {
        const auto glyph = static_cast<CGGlyph>(index);
        EXPECT_EQ(table.italicCorrection(glyph), hb_ot_math_get_glyph_italics_correction(reference.font.get(), glyph))
            << index;
        // Half of the advance, rounded down, when the font has none.
        EXPECT_EQ(table.topAccent(glyph).value_or(font.advance(glyph) / 2),
                  hb_ot_math_get_glyph_top_accent_attachment(reference.font.get(), glyph))
            << index;
        for (const auto& [direction, variants] : {std::pair(HB_DIRECTION_TTB, table.verticalVariants(glyph)),
                                                  {HB_DIRECTION_LTR, table.horizontalVariants(glyph)}})
            EXPECT_EQ(std::vector<CGGlyph>(variants.begin(), variants.end()), reference.variants(glyph, direction))
                << index;

        std::vector<Part> parts;
        for (const auto& part : table.verticalAssembly(glyph))
            parts.emplace_back(part.glyph, part.advance, part.startConnector, part.endConnector, part.isExtender);
        EXPECT_EQ(parts, reference.parts(glyph)) << index;
        assemblies += parts.empty() ? 0 : 1;
    }
    EXPECT_GT(assemblies, 10);
}

/// What the tool says when it fails; empty when it doesn't.
QByteArray extractionError(const QString& fontPath, const QString& listPath) {
    QProcess tool;
    tool.start(QStringLiteral(MATH_PLIST), {fontPath, listPath});
    EXPECT_TRUE(tool.waitForFinished());
    return tool.exitCode() == 0 ? QByteArray() : "failed: " + tool.readAllStandardError();
}

} // namespace

TEST(MathTable, everyValueOfEveryFontIsThatOfItsFile) {
    BundleManager manager(MathFontsBundle::folder());
    int read = 0;
    for (const MathFont font : allMathFonts) {
        const QString path = MathFontsBundle::fontPath(MathFontsBundle::folder(), fontName(font));
        if (!QFile::exists(path))
            continue;
        SCOPED_TRACE(path.toStdString());
        expectSameTable(ReferenceFont(path), *manager.cgFont(font), *manager.rawMathTable(font));
        ++read;
    }
    EXPECT_GE(read, 1);
}

// A TrueType font that names none of its glyphs, through the tool and back.
TEST(MathTable, aFontWithoutGlyphNamesKeepsItsTable) {
    const QTemporaryDir folder;
    const QString name = fontName(MathFont::eulerFont);
    const QString fontPath = MathFontsBundle::fontPath(folder.path(), name);
    MathFontFiles::write(fontPath, MathFontFiles::withoutTable(MathFontFiles::trueTypeBytes(), "post"));
    ASSERT_EQ(extractionError(fontPath, MathFontsBundle::propertyListPath(folder.path(), name)), "");
    BundleManager manager(folder.path());
    const auto cgFont = manager.cgFont(MathFont::eulerFont);
    EXPECT_TRUE(cgFont->glyphName(cgFont->glyph(U'(')).startsWith(QLatin1String("gid")));
    expectSameTable(ReferenceFont(fontPath), *cgFont, *manager.rawMathTable(MathFont::eulerFont));
}

TEST(MathTable, theToolRefusesWhatHasNoTable) {
    const QTemporaryDir folder;
    const QString font = folder.filePath(QStringLiteral("font.otf"));
    const QString list = folder.filePath(QStringLiteral("font.plist"));
    for (const QByteArray& bytes : {MathFontFiles::withoutTable(MathFontFiles::fontBytes(), "MATH"), QByteArray("?")}) {
        MathFontFiles::write(font, bytes);
        EXPECT_TRUE(extractionError(font, list).contains(font.toUtf8()));
    }
    EXPECT_NE(extractionError(folder.filePath(QStringLiteral("missing.otf")), list), "");
    EXPECT_FALSE(QFile::exists(list));
}
