#include "BundleManager.h"
#include "CGFont.h"
#include "MTFontV2.h"
#include "MTRawMathTable.h"
#include "MathFontFiles.h"
#include "MathFontsBundle.h"
#include "MathTableKeys.h"
#include "PropertyList.h"

#include <QFile>
#include <QProcess>
#include <QTemporaryDir>

#include <memory>

#include <gtest/gtest.h>

#include <hb-ot.h>
#include <hb.h>

namespace {

/// The MATH table of a font file as the library reads it, in font units.
class ReferenceTable {
public:
    explicit ReferenceTable(const QString& path) {
        hb_blob_t* blob = hb_blob_create_from_file(QFile::encodeName(path).constData());
        hb_face_t* face = hb_face_create(blob, 0);
        m_font.reset(hb_font_create(face));
        m_glyphCount = hb_face_get_glyph_count(face);
        hb_face_destroy(face);
        hb_blob_destroy(blob);
    }

    [[nodiscard]] unsigned glyphCount() const { return m_glyphCount; }
    [[nodiscard]] int constant(int which) const {
        return hb_ot_math_get_constant(m_font.get(), static_cast<hb_ot_math_constant_t>(which));
    }
    [[nodiscard]] int minConnectorOverlap() const {
        return hb_ot_math_get_min_connector_overlap(m_font.get(), HB_DIRECTION_TTB);
    }
    [[nodiscard]] int italicCorrection(hb_codepoint_t glyph) const {
        return hb_ot_math_get_glyph_italics_correction(m_font.get(), glyph);
    }
    /// Half of the advance, rounded down, when the font has none.
    [[nodiscard]] int topAccent(hb_codepoint_t glyph) const {
        return hb_ot_math_get_glyph_top_accent_attachment(m_font.get(), glyph);
    }
    [[nodiscard]] std::vector<CGGlyph> variants(hb_codepoint_t glyph, hb_direction_t direction) const {
        std::vector<hb_ot_math_glyph_variant_t> found(100);
        auto count = static_cast<unsigned>(found.size());
        hb_ot_math_get_glyph_variants(m_font.get(), glyph, direction, 0, &count, found.data());
        std::vector<CGGlyph> result;
        for (unsigned index = 0; index < count; ++index)
            result.push_back(static_cast<CGGlyph>(found[index].glyph));
        return result;
    }
    [[nodiscard]] std::vector<hb_ot_math_glyph_part_t> parts(hb_codepoint_t glyph) const {
        std::vector<hb_ot_math_glyph_part_t> found(100);
        auto count = static_cast<unsigned>(found.size());
        hb_ot_math_get_glyph_assembly(m_font.get(), glyph, HB_DIRECTION_TTB, 0, &count, found.data(), nullptr);
        found.resize(count);
        return found;
    }

private:
    struct Deleter {
        void operator()(hb_font_t* font) const { hb_font_destroy(font); }
    };
    std::unique_ptr<hb_font_t, Deleter> m_font;
    unsigned m_glyphCount = 0;
};

/// A glyph that the table says nothing of has itself as its only variant.
void expectVariants(const ReferenceTable& reference, hb_codepoint_t glyph, hb_direction_t direction,
                    std::span<const CGGlyph> variants) {
    auto expected = reference.variants(glyph, direction);
    if (expected.empty())
        expected.push_back(static_cast<CGGlyph>(glyph));
    EXPECT_EQ(std::vector<CGGlyph>(variants.begin(), variants.end()), expected) << glyph;
}

/// Every value of `table` against the font file.
void expectSameTable(const ReferenceTable& reference, const CGFont& font, const MTRawMathTable& table) {
    for (int which = 0; which < static_cast<int>(MTMathConstant::minConnectorOverlap); ++which)
        EXPECT_EQ(table.constant(static_cast<MTMathConstant>(which)), reference.constant(which)) << which;
    EXPECT_EQ(table.constant(MTMathConstant::minConnectorOverlap), reference.minConnectorOverlap());

    int assemblies = 0;
    for (unsigned index = 0; index < reference.glyphCount(); ++index) {
        const auto glyph = static_cast<CGGlyph>(index);
        EXPECT_EQ(table.italicCorrection(glyph), reference.italicCorrection(glyph)) << index;
        EXPECT_EQ(table.topAccent(glyph).value_or(font.advance(glyph) / 2), reference.topAccent(glyph)) << index;
        expectVariants(reference, glyph, HB_DIRECTION_TTB, table.verticalVariants(glyph));
        expectVariants(reference, glyph, HB_DIRECTION_LTR, table.horizontalVariants(glyph));

        const auto expected = reference.parts(glyph);
        const auto parts = table.verticalAssembly(glyph);
        ASSERT_EQ(parts.size(), expected.size()) << index;
        for (std::size_t part = 0; part < parts.size(); ++part) {
            EXPECT_EQ(parts[part].glyph, expected[part].glyph) << index;
            EXPECT_EQ(parts[part].advance, expected[part].full_advance) << index;
            EXPECT_EQ(parts[part].startConnector, expected[part].start_connector_length) << index;
            EXPECT_EQ(parts[part].endConnector, expected[part].end_connector_length) << index;
            EXPECT_EQ(parts[part].isExtender, (expected[part].flags & HB_OT_MATH_GLYPH_PART_FLAG_EXTENDER) != 0);
        }
        assemblies += parts.empty() ? 0 : 1;
    }
    EXPECT_GT(assemblies, 10);
}

/// Every glyph name that stands in the list.
QStringList glyphNamesIn(const QVariantMap& list) {
    using namespace MathTableKeys;
    QStringList names;
    for (const QLatin1String key : {kVertVariants, kHorizVariants}) {
        const QVariantMap section = list.value(key).toMap();
        names += section.keys();
        for (const QVariant& variants : section)
            names += variants.toStringList();
    }
    for (const QLatin1String key : {kItalic, kAccents, kVertAssembly})
        names += list.value(key).toMap().keys();
    const QVariantMap assemblies = list.value(kVertAssembly).toMap();
    for (const QVariant& assembly : assemblies) {
        const QVariantList parts = assembly.toMap().value(kAssemblyParts).toList();
        for (const QVariant& part : parts)
            names += part.toMap().value(kPartGlyph).toString();
    }
    return names;
}

struct Extraction {
    int exitCode = -1;
    QString errors;
};

Extraction extract(const QString& fontPath, const QString& listPath) {
    QProcess tool;
    tool.start(QStringLiteral(MATH_PLIST), {fontPath, listPath});
    EXPECT_TRUE(tool.waitForFinished());
    return {tool.exitCode(), QString::fromUtf8(tool.readAllStandardError())};
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
        const auto cgFont = manager.cgFont(font);
        expectSameTable(ReferenceTable(path), *cgFont, *manager.rawMathTable(font));

        const QStringList names = glyphNamesIn(PropertyList::fromXml(
            MathFontFiles::contents(MathFontsBundle::propertyListPath(MathFontsBundle::folder(), fontName(font)))));
        EXPECT_GT(names.size(), 500);
        for (const QString& name : names)
            EXPECT_EQ(cgFont->glyphName(cgFont->glyphWithName(name)), name);
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
    const Extraction extraction = extract(fontPath, MathFontsBundle::propertyListPath(folder.path(), name));
    ASSERT_EQ(extraction.exitCode, 0) << extraction.errors.toStdString();

    BundleManager manager(folder.path());
    const auto cgFont = manager.cgFont(MathFont::eulerFont);
    EXPECT_TRUE(cgFont->glyphName(cgFont->glyph(U'(')).startsWith(QLatin1String("gid")));
    expectSameTable(ReferenceTable(fontPath), *cgFont, *manager.rawMathTable(MathFont::eulerFont));
}

TEST(MathTable, theToolRefusesWhatHasNoTable) {
    const QTemporaryDir folder;
    const QString font = folder.filePath(QStringLiteral("font.otf"));
    const QString list = folder.filePath(QStringLiteral("font.plist"));
    for (const QByteArray& bytes :
         {MathFontFiles::withoutTable(MathFontFiles::fontBytes(), "MATH"), QByteArray("no font")}) {
        MathFontFiles::write(font, bytes);
        const Extraction extraction = extract(font, list);
        EXPECT_EQ(extraction.exitCode, 1);
        EXPECT_TRUE(extraction.errors.contains(font)) << extraction.errors.toStdString();
    }
    EXPECT_EQ(extract(folder.filePath(QStringLiteral("missing.otf")), list).exitCode, 1);
    EXPECT_FALSE(QFile::exists(list));
}
