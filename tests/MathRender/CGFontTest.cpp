#include "CGFont.h"
#include "CTFont.h"
#include "MathFontFiles.h"
#include "MathFontsBundle.h"

#include <QPainterPath>
#include <QSet>
#include <QTemporaryDir>

#include <algorithm>
#include <array>
#include <memory>
#include <optional>
#include <vector>

#include <gtest/gtest.h>

#include <ft2build.h>
#include FT_FREETYPE_H
#include FT_OUTLINE_H

namespace {

/// The font engine itself.
class ReferenceFace {
public:
    explicit ReferenceFace(const QByteArray& bytes) : m_bytes(bytes) {
        EXPECT_EQ(FT_Init_FreeType(&m_library), 0);
        const auto* data = reinterpret_cast<const FT_Byte*>(m_bytes.constData());
        EXPECT_EQ(FT_New_Memory_Face(m_library, data, static_cast<FT_Long>(m_bytes.size()), 0, &m_face), 0);
    }
    ~ReferenceFace() {
        FT_Done_Face(m_face);
        FT_Done_FreeType(m_library);
    }
    ReferenceFace(const ReferenceFace&) = delete;
    ReferenceFace& operator=(const ReferenceFace&) = delete;

    [[nodiscard]] FT_Face face() const { return m_face; }
    FT_GlyphSlot load(FT_UInt glyph) {
        EXPECT_EQ(FT_Load_Glyph(m_face, glyph, FT_LOAD_NO_SCALE), 0);
        return m_face->glyph;
    }

private:
    QByteArray m_bytes;
    FT_Library m_library = nullptr;
    FT_Face m_face = nullptr;
};

/// The box of an outline, from points close to one another on every curve.
class SampledBox {
public:
    explicit SampledBox(FT_Outline& outline) {
        FT_Outline_Funcs visiting{};
        visiting.move_to = [](const FT_Vector* to, void* box) {
            static_cast<SampledBox*>(box)->m_pen = *to;
            return 0;
        };
        visiting.line_to = [](const FT_Vector* to, void* box) {
            return static_cast<SampledBox*>(box)->sample([](double t) { return std::array{1 - t, t}; }, {*to});
        };
        visiting.conic_to = [](const FT_Vector* control, const FT_Vector* to, void* box) {
            return static_cast<SampledBox*>(box)->sample(
                [](double t) {
                    return std::array{(1 - t) * (1 - t), 2 * (1 - t) * t, t * t};
                },
                {*control, *to});
        };
        visiting.cubic_to = [](const FT_Vector* first, const FT_Vector* second, const FT_Vector* to, void* box) {
            return static_cast<SampledBox*>(box)->sample(
                [](double t) {
                    const double s = 1 - t;
                    return std::array{s * s * s, 3 * s * s * t, 3 * s * t * t, t * t * t};
                },
                {*first, *second, *to});
        };
        EXPECT_EQ(FT_Outline_Decompose(&outline, &visiting, this), 0);
    }

    [[nodiscard]] const std::optional<GlyphBox>& box() const { return m_box; }

private:
    /// Goes from the pen to the last of `points`, with the weights of the pen and of each point at a time from 0 to 1.
    template <typename Weights>
    int sample(Weights weights, const std::vector<FT_Vector>& points) {
        // Some fonts mark places by contours that lead nowhere.
        if (points.size() == 1 && points[0].x == m_pen.x && points[0].y == m_pen.y)
            return 0;
        constexpr int steps = 32;
        for (int step = 0; step <= steps; ++step) {
            const auto weight = weights(static_cast<double>(step) / steps);
            double x = weight[0] * static_cast<double>(m_pen.x);
            double y = weight[0] * static_cast<double>(m_pen.y);
            for (std::size_t index = 0; index < points.size(); ++index) {
                x += weight[index + 1] * static_cast<double>(points[index].x);
                y += weight[index + 1] * static_cast<double>(points[index].y);
            }
            const GlyphBox known = m_box.value_or(GlyphBox{x, y, x, y});
            m_box = {std::min(known.left, x), std::min(known.bottom, y), std::max(known.right, x),
                     std::max(known.top, y)};
        }
        m_pen = points.back();
        return 0;
    }

    FT_Vector m_pen{};
    std::optional<GlyphBox> m_box; ///< none while nothing is drawn
};

} // namespace

// Cubic outlines with names of their own, and quadratic ones.
TEST(CGFont, everyGlyphIsAsTheFontFileHasIt) {
    for (const QByteArray& bytes : {MathFontFiles::fontBytes(), MathFontFiles::trueTypeBytes()}) {
        ReferenceFace reference(bytes);
        const CGFont font(bytes, QStringLiteral("font"));
        ASSERT_EQ(font.numberOfGlyphs(), reference.face()->num_glyphs);
        EXPECT_EQ(font.unitsPerEm(), reference.face()->units_per_EM);

        QSet<QString> names;
        int drawn = 0;
        for (int index = 0; index < font.numberOfGlyphs(); ++index) {
            const auto glyph = static_cast<CGGlyph>(index);
            FT_GlyphSlot slot = reference.load(glyph);
            EXPECT_EQ(font.advance(glyph), slot->metrics.horiAdvance) << index;
            drawn += font.glyphPath(glyph).isEmpty() ? 0 : 1;

            names.insert(font.glyphName(glyph));
            EXPECT_EQ(font.glyphWithName(font.glyphName(glyph)), glyph) << font.glyphName(glyph).toStdString();

            const GlyphBox box = font.boundingBox(glyph);
            const GlyphBox expected = SampledBox(slot->outline).box().value_or(GlyphBox());
            EXPECT_NEAR(box.left, expected.left, 0.5) << index;
            EXPECT_NEAR(box.bottom, expected.bottom, 0.5) << index;
            EXPECT_NEAR(box.right, expected.right, 0.5) << index;
            EXPECT_NEAR(box.top, expected.top, 0.5) << index;
        }
        EXPECT_EQ(names.size(), font.numberOfGlyphs());
        EXPECT_GT(drawn, font.numberOfGlyphs() * 9 / 10);
        for (char32_t character = 0; character < 0x20000; ++character)
            EXPECT_EQ(font.glyph(character), FT_Get_Char_Index(reference.face(), character))
                << static_cast<unsigned>(character);
    }
}

TEST(CGFont, whatTheFontDoesNotHaveIsGlyphZero) {
    const CGFont font(MathFontFiles::fontBytes(), QStringLiteral("font"));
    EXPECT_EQ(font.glyph(U'\U0001F600'), 0);
    EXPECT_EQ(font.glyph(char32_t{0xFFFFFFFF}), 0);
    EXPECT_EQ(font.glyphWithName(QStringLiteral("no such glyph")), 0);
    const CGGlyph outside = 0xFFFF;
    EXPECT_EQ(font.glyphName(outside), font.glyphName(0));
    EXPECT_EQ(font.advance(outside), font.advance(0));
    EXPECT_EQ(font.boundingBox(outside), font.boundingBox(0));
    EXPECT_EQ(font.glyphPath(outside), font.glyphPath(0));
}

TEST(CGFont, aFontWithoutNamesGetsNames) {
    const CGFont font(MathFontFiles::withoutTable(MathFontFiles::trueTypeBytes(), "post"), QStringLiteral("font"));
    const CGGlyph glyph = font.glyph(U'A');
    ASSERT_NE(glyph, 0);
    EXPECT_EQ(font.glyphName(glyph), QStringLiteral("gid%1").arg(glyph));
    for (int index = 0; index < font.numberOfGlyphs(); ++index)
        EXPECT_EQ(font.glyphWithName(font.glyphName(static_cast<CGGlyph>(index))), index);
}

TEST(CGFont, filesThatAreNoFontsAreErrors) {
    const QTemporaryDir folder;
    const QString path = folder.filePath(QStringLiteral("font.otf"));
    using Kind = FontError::Kind;
    EXPECT_EQ(MathFontFiles::fontErrorOf([&] { return CGFont::read(path); }), Kind::fontPathNotFound);
    EXPECT_EQ(MathFontFiles::fontErrorOf([&] { return CGFont::read(folder.path()); }), Kind::fontPathNotFound);

    const QByteArray whole = MathFontFiles::fontBytes();
    const QByteArray nameless = MathFontFiles::withoutTable(MathFontFiles::trueTypeBytes(), "post");
    const struct {
        const char* what;
        QByteArray bytes;
        Kind kind;
    } damaged[] = {
        {"empty", "", Kind::invalidFontFile},
        {"text", "This is no font.", Kind::invalidFontFile},
        {"cut off in its directory", whole.left(100), Kind::invalidFontFile},
        {"without outlines", MathFontFiles::withoutTable(whole, "CFF "), Kind::invalidFontFile},
        {"without widths", MathFontFiles::withoutTable(whole, "hmtx"), Kind::invalidFontFile},
        {"without characters", MathFontFiles::withoutTable(nameless, "cmap"), Kind::registerFailed},
    };
    for (const auto& sample : damaged) {
        MathFontFiles::write(path, sample.bytes);
        EXPECT_EQ(MathFontFiles::fontErrorOf([&] { return CGFont::read(path); }), sample.kind) << sample.what;
    }
}

TEST(CTFont, measuresArePointsAtTheSize) {
    const auto file = std::make_shared<const CGFont>(MathFontFiles::fontBytes(), QStringLiteral("font"));
    const CTFont font(file, 20);
    const CGGlyph glyph = font.glyph(U'\U0001D453'); // an italic f, which hangs over on both sides
    ASSERT_NE(glyph, 0);
    EXPECT_DOUBLE_EQ(font.advance(glyph), file->advance(glyph) * 0.02);
    const GlyphBox units = file->boundingBox(glyph);
    const GlyphBox box = font.boundingBox(glyph);
    EXPECT_DOUBLE_EQ(box.left, units.left * 0.02);
    EXPECT_DOUBLE_EQ(box.bottom, units.bottom * 0.02);
    EXPECT_DOUBLE_EQ(box.right, units.right * 0.02);
    EXPECT_DOUBLE_EQ(box.top, units.top * 0.02);
    EXPECT_LT(box.bottom, 0);
    EXPECT_GT(box.top, 0);
}

// The inside of a letter stays empty, and the stroke is filled.
TEST(CGFont, outlinesAreClosedContoursWithHoles) {
    const CGFont font(MathFontFiles::fontBytes(), QStringLiteral("font"));
    const CGGlyph glyph = font.glyph(U'O');
    const GlyphBox box = font.boundingBox(glyph);
    const QPainterPath& path = font.glyphPath(glyph);
    EXPECT_EQ(path.fillRule(), Qt::WindingFill);
    const double middle = (box.bottom + box.top) / 2;
    EXPECT_FALSE(path.contains(QPointF((box.left + box.right) / 2, middle)));
    EXPECT_TRUE(path.contains(QPointF(box.left + 30, middle)));
    EXPECT_TRUE(path.contains(QPointF(box.right - 30, middle)));
}
