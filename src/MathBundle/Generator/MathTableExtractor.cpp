#include "MathTableExtractor.h"

#include "CGFont.h"
#include "FontError.h"
#include "MTMathConstant.h"
#include "MathTableKeys.h"

#include <QByteArray>

#include <array>
#include <memory>

#include <hb-ot.h>
#include <hb.h>

using namespace MathTableKeys;

namespace {

template <auto destroy>
struct Destroyer {
    template <typename Object>
    void operator()(Object* object) const {
        destroy(object);
    }
};
using BlobPointer = std::unique_ptr<hb_blob_t, Destroyer<hb_blob_destroy>>;
using FacePointer = std::unique_ptr<hb_face_t, Destroyer<hb_face_destroy>>;
using FontPointer = std::unique_ptr<hb_font_t, Destroyer<hb_font_destroy>>;
using FontFuncsPointer = std::unique_ptr<hb_font_funcs_t, Destroyer<hb_font_funcs_destroy>>;

// Constants are asked for by their place in the MATH table.
static_assert(static_cast<int>(MTMathConstant::scriptPercentScaleDown) ==
              HB_OT_MATH_CONSTANT_SCRIPT_PERCENT_SCALE_DOWN);
static_assert(static_cast<int>(MTMathConstant::axisHeight) == HB_OT_MATH_CONSTANT_AXIS_HEIGHT);
static_assert(static_cast<int>(MTMathConstant::radicalDegreeBottomRaisePercent) ==
              HB_OT_MATH_CONSTANT_RADICAL_DEGREE_BOTTOM_RAISE_PERCENT);

/// For a glyph without an attachment point the library answers half of its advance. With an advance that no font can
/// have, the answer tells that the table has none.
constexpr hb_position_t impossibleAdvance = 1 << 20;

class Extractor {
public:
    Extractor(const QByteArray& bytes, const QString& name) : m_names(bytes, name) {
        const BlobPointer blob(hb_blob_create(bytes.constData(), static_cast<unsigned>(bytes.size()),
                                              HB_MEMORY_MODE_DUPLICATE, nullptr, nullptr));
        const FacePointer face(hb_face_create(blob.get(), 0));
        if (!hb_ot_math_has_data(face.get())) {
            throw FontError(FontError::Kind::invalidMathTable,
                            QStringLiteral("“%1” is no math font: it has no MATH table.").arg(name));
        }
        const FontFuncsPointer funcs(hb_font_funcs_create());
        hb_font_funcs_set_glyph_h_advance_func(
            funcs.get(), [](hb_font_t*, void*, hb_codepoint_t, void*) { return impossibleAdvance; }, nullptr, nullptr);
        m_font.reset(hb_font_create(face.get()));
        hb_font_set_funcs(m_font.get(), funcs.get(), nullptr, nullptr);
        hb_font_set_scale(m_font.get(), m_names.unitsPerEm(), m_names.unitsPerEm());
    }

    [[nodiscard]] QVariantMap propertyList() const {
        QVariantMap verticalVariants;
        QVariantMap horizontalVariants;
        QVariantMap italic;
        QVariantMap accents;
        QVariantMap assemblies;
        for (int index = 0; index < m_names.numberOfGlyphs(); ++index) {
            const auto glyph = static_cast<CGGlyph>(index);
            const QString& name = m_names.glyphName(glyph);
            if (const QVariantList found = variants(glyph, HB_DIRECTION_BTT); !found.isEmpty())
                verticalVariants.insert(name, found);
            if (const QVariantList found = variants(glyph, HB_DIRECTION_LTR); !found.isEmpty())
                horizontalVariants.insert(name, found);
            if (const int correction = hb_ot_math_get_glyph_italics_correction(m_font.get(), glyph); correction != 0)
                italic.insert(name, correction);
            if (const int accent = hb_ot_math_get_glyph_top_accent_attachment(m_font.get(), glyph);
                accent != impossibleAdvance / 2)
                accents.insert(name, accent);
            if (const QVariantList found = assemblyParts(glyph); !found.isEmpty())
                assemblies.insert(name, QVariantMap{{kAssemblyParts, found}});
        }
        return {{kVersion, QString(supportedVersion)},
                {kConstants, constants()},
                {kVertVariants, verticalVariants},
                {kHorizVariants, horizontalVariants},
                {kItalic, italic},
                {kAccents, accents},
                {kVertAssembly, assemblies}};
    }

private:
    [[nodiscard]] QVariantMap constants() const {
        QVariantMap result;
        for (int which = 0; which < static_cast<int>(mathConstantNames.size()); ++which) {
            const auto constant = static_cast<MTMathConstant>(which);
            result.insert(name(constant),
                          constant == MTMathConstant::minConnectorOverlap
                              ? hb_ot_math_get_min_connector_overlap(m_font.get(), HB_DIRECTION_BTT)
                              : hb_ot_math_get_constant(m_font.get(), static_cast<hb_ot_math_constant_t>(which)));
        }
        return result;
    }

    [[nodiscard]] QVariantList variants(CGGlyph glyph, hb_direction_t direction) const {
        QVariantList result;
        std::array<hb_ot_math_glyph_variant_t, 16> found{};
        unsigned count = 0;
        do {
            count = static_cast<unsigned>(found.size());
            hb_ot_math_get_glyph_variants(m_font.get(), glyph, direction, static_cast<unsigned>(result.size()), &count,
                                          found.data());
            for (unsigned index = 0; index < count; ++index)
                result.append(m_names.glyphName(static_cast<CGGlyph>(found[index].glyph)));
        } while (count == found.size());
        return result;
    }

    [[nodiscard]] QVariantList assemblyParts(CGGlyph glyph) const {
        QVariantList result;
        std::array<hb_ot_math_glyph_part_t, 16> found{};
        unsigned count = 0;
        do {
            count = static_cast<unsigned>(found.size());
            hb_ot_math_get_glyph_assembly(m_font.get(), glyph, HB_DIRECTION_BTT, static_cast<unsigned>(result.size()),
                                          &count, found.data(), nullptr);
            for (unsigned index = 0; index < count; ++index) {
                const hb_ot_math_glyph_part_t& part = found[index];
                result.append(QVariantMap{{kPartGlyph, m_names.glyphName(static_cast<CGGlyph>(part.glyph))},
                                          {kPartAdvance, part.full_advance},
                                          {kPartStart, part.start_connector_length},
                                          {kPartEnd, part.end_connector_length},
                                          {kPartExtender, (part.flags & HB_OT_MATH_GLYPH_PART_FLAG_EXTENDER) != 0}});
            }
        } while (count == found.size());
        return result;
    }

    CGFont m_names;
    FontPointer m_font;
};

} // namespace

QVariantMap propertyListOfMathTable(const QByteArray& bytes, const QString& name) {
    return Extractor(bytes, name).propertyList();
}
