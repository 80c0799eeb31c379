#pragma once

#include "GlyphPart.h"
#include "MTMathConstant.h"
#include "MTRawMathTable.h"

#include <QStringView>

#include <memory>
#include <span>
#include <vector>

class MTFont;

/// What the typesetter asks a math font, in points at the font's size. It belongs to its font, which outlives it. It
/// never changes and may be used on any number of threads at once; no operation takes a lock, and but for
/// `getVerticalGlyphAssembly` none allocates.
class MTFontMathTable {
public:
    /// Throws `MTException` when the version of `mathTable` is not the supported one.
    MTFontMathTable(const MTFont& font, std::shared_ptr<const MTRawMathTable> mathTable);
    virtual ~MTFontMathTable();
    MTFontMathTable(const MTFontMathTable&) = delete;
    MTFontMathTable& operator=(const MTFontMathTable&) = delete;

    [[nodiscard]] const MTFont& font() const { return m_font; }

    [[nodiscard]] double fontUnitsToPt(int fontUnits) const { return m_fontSize * fontUnits / m_unitsPerEm; }
    /// By its name in the property list; 0 for a constant that is not in it.
    [[nodiscard]] double constantFromTable(QStringView name) const;
    /// An entry in percent as a fraction; 0 when it is not in the list.
    [[nodiscard]] double percentFromTable(QStringView name) const;

    /// TeX's mathematical unit, an 18th of the em.
    [[nodiscard]] double muUnit() const { return m_fontSize / 18; }
    /// The heights of the delimiters around a fraction, TeX's sigma 21 and sigma 20. The MATH table has none for them.
    [[nodiscard]] double fractionDelimiterSize() const { return 1.01 * m_fontSize; }
    [[nodiscard]] double fractionDelimiterDisplayStyleSize() const { return 2.39 * m_fontSize; }

    // Scaling of scripts, as a fraction of the size
    [[nodiscard]] double scriptPercentScaleDown() const { return percent(MTMathConstant::scriptPercentScaleDown); }
    [[nodiscard]] double scriptScriptPercentScaleDown() const {
        return percent(MTMathConstant::scriptScriptPercentScaleDown);
    }

    // General
    [[nodiscard]] double axisHeight() const { return constant(MTMathConstant::axisHeight); }
    [[nodiscard]] double accentBaseHeight() const { return constant(MTMathConstant::accentBaseHeight); }
    [[nodiscard]] double minConnectorOverlap() const { return constant(MTMathConstant::minConnectorOverlap); }

    // Fractions
    [[nodiscard]] double fractionNumeratorDisplayStyleShiftUp() const {
        return constant(MTMathConstant::fractionNumeratorDisplayStyleShiftUp);
    }
    [[nodiscard]] double fractionNumeratorShiftUp() const { return constant(MTMathConstant::fractionNumeratorShiftUp); }
    [[nodiscard]] double fractionDenominatorDisplayStyleShiftDown() const {
        return constant(MTMathConstant::fractionDenominatorDisplayStyleShiftDown);
    }
    [[nodiscard]] double fractionDenominatorShiftDown() const {
        return constant(MTMathConstant::fractionDenominatorShiftDown);
    }
    [[nodiscard]] double fractionNumDisplayStyleGapMin() const {
        return constant(MTMathConstant::fractionNumDisplayStyleGapMin);
    }
    [[nodiscard]] double fractionNumeratorGapMin() const { return constant(MTMathConstant::fractionNumeratorGapMin); }
    [[nodiscard]] double fractionDenomDisplayStyleGapMin() const {
        return constant(MTMathConstant::fractionDenomDisplayStyleGapMin);
    }
    [[nodiscard]] double fractionDenominatorGapMin() const {
        return constant(MTMathConstant::fractionDenominatorGapMin);
    }
    [[nodiscard]] double fractionRuleThickness() const { return constant(MTMathConstant::fractionRuleThickness); }

    // Fractions without a rule
    [[nodiscard]] double stackTopDisplayStyleShiftUp() const {
        return constant(MTMathConstant::stackTopDisplayStyleShiftUp);
    }
    [[nodiscard]] double stackTopShiftUp() const { return constant(MTMathConstant::stackTopShiftUp); }
    [[nodiscard]] double stackBottomDisplayStyleShiftDown() const {
        return constant(MTMathConstant::stackBottomDisplayStyleShiftDown);
    }
    [[nodiscard]] double stackBottomShiftDown() const { return constant(MTMathConstant::stackBottomShiftDown); }
    [[nodiscard]] double stackDisplayStyleGapMin() const { return constant(MTMathConstant::stackDisplayStyleGapMin); }
    [[nodiscard]] double stackGapMin() const { return constant(MTMathConstant::stackGapMin); }

    // Scripts
    [[nodiscard]] double superscriptShiftUp() const { return constant(MTMathConstant::superscriptShiftUp); }
    [[nodiscard]] double superscriptShiftUpCramped() const {
        return constant(MTMathConstant::superscriptShiftUpCramped);
    }
    [[nodiscard]] double subscriptShiftDown() const { return constant(MTMathConstant::subscriptShiftDown); }
    [[nodiscard]] double superscriptBaselineDropMax() const {
        return constant(MTMathConstant::superscriptBaselineDropMax);
    }
    [[nodiscard]] double subscriptBaselineDropMin() const { return constant(MTMathConstant::subscriptBaselineDropMin); }
    [[nodiscard]] double superscriptBottomMin() const { return constant(MTMathConstant::superscriptBottomMin); }
    [[nodiscard]] double subscriptTopMax() const { return constant(MTMathConstant::subscriptTopMax); }
    [[nodiscard]] double subSuperscriptGapMin() const { return constant(MTMathConstant::subSuperscriptGapMin); }
    [[nodiscard]] double superscriptBottomMaxWithSubscript() const {
        return constant(MTMathConstant::superscriptBottomMaxWithSubscript);
    }
    [[nodiscard]] double spaceAfterScript() const { return constant(MTMathConstant::spaceAfterScript); }

    // Radicals; the kerns may be negative, and the raise is a fraction
    [[nodiscard]] double radicalRuleThickness() const { return constant(MTMathConstant::radicalRuleThickness); }
    [[nodiscard]] double radicalExtraAscender() const { return constant(MTMathConstant::radicalExtraAscender); }
    [[nodiscard]] double radicalVerticalGap() const { return constant(MTMathConstant::radicalVerticalGap); }
    [[nodiscard]] double radicalDisplayStyleVerticalGap() const {
        return constant(MTMathConstant::radicalDisplayStyleVerticalGap);
    }
    [[nodiscard]] double radicalKernBeforeDegree() const { return constant(MTMathConstant::radicalKernBeforeDegree); }
    [[nodiscard]] double radicalKernAfterDegree() const { return constant(MTMathConstant::radicalKernAfterDegree); }
    [[nodiscard]] double radicalDegreeBottomRaisePercent() const {
        return percent(MTMathConstant::radicalDegreeBottomRaisePercent);
    }

    // Limits of large operators
    [[nodiscard]] double upperLimitGapMin() const { return constant(MTMathConstant::upperLimitGapMin); }
    [[nodiscard]] double upperLimitBaselineRiseMin() const {
        return constant(MTMathConstant::upperLimitBaselineRiseMin);
    }
    [[nodiscard]] double lowerLimitGapMin() const { return constant(MTMathConstant::lowerLimitGapMin); }
    [[nodiscard]] double lowerLimitBaselineDropMin() const {
        return constant(MTMathConstant::lowerLimitBaselineDropMin);
    }

    // Lines above and below
    [[nodiscard]] double overbarVerticalGap() const { return constant(MTMathConstant::overbarVerticalGap); }
    [[nodiscard]] double overbarRuleThickness() const { return constant(MTMathConstant::overbarRuleThickness); }
    [[nodiscard]] double overbarExtraAscender() const { return constant(MTMathConstant::overbarExtraAscender); }
    [[nodiscard]] double underbarVerticalGap() const { return constant(MTMathConstant::underbarVerticalGap); }
    [[nodiscard]] double underbarRuleThickness() const { return constant(MTMathConstant::underbarRuleThickness); }
    [[nodiscard]] double underbarExtraDescender() const { return constant(MTMathConstant::underbarExtraDescender); }

    /// The glyphs of growing size for `glyph`, from the smallest. `glyph` alone when the font has none, so it is never
    /// empty. Lives as long as the property list, which all sizes of the font share.
    [[nodiscard]] std::span<const CGGlyph> getVerticalVariantsForGlyph(CGGlyph glyph) const;
    [[nodiscard]] std::span<const CGGlyph> getHorizontalVariantsForGlyph(CGGlyph glyph) const;
    /// The first vertical variant other than the glyph; the glyph itself when there is none.
    [[nodiscard]] CGGlyph getLargerGlyph(CGGlyph glyph) const;
    /// How far the glyph's top leans to the right of its advance; 0 when the font doesn't say.
    [[nodiscard]] double getItalicCorrection(CGGlyph glyph) const;
    /// Where the middle of an accent goes, from the glyph's origin; half of the advance when the font doesn't say.
    [[nodiscard]] double getTopAccentAdjustment(CGGlyph glyph) const;
    /// The parts from bottom to top; empty when the glyph can't be built.
    [[nodiscard]] std::vector<GlyphPart> getVerticalGlyphAssembly(CGGlyph glyph) const;

private:
    [[nodiscard]] double constant(MTMathConstant which) const { return fontUnitsToPt(m_mathTable->constant(which)); }
    [[nodiscard]] double percent(MTMathConstant which) const { return m_mathTable->constant(which) / 100.0; }

    const MTFont& m_font;
    int m_unitsPerEm;
    double m_fontSize;
    std::shared_ptr<const MTRawMathTable> m_mathTable;
};
