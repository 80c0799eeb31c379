#pragma once

#include "CGGlyph.h"
#include "MTDisplayDS.h"

#include <vector>

/// A glyph of any height that is built of parts, one above the other. The lowest begins on the baseline.
class MTGlyphConstructionDisplay final : public MTDisplayDS {
public:
    /// `offsets` say how high each of `glyphs` is above the lowest. The height of all together is the ascent.
    MTGlyphConstructionDisplay(std::vector<CGGlyph> glyphs, std::vector<float> offsets, double height, double width,
                               std::shared_ptr<const MTFont> font);

    [[nodiscard]] const std::vector<CGGlyph>& glyphs() const { return m_glyphs; }
    [[nodiscard]] const std::vector<float>& offsets() const { return m_offsets; }
    [[nodiscard]] int numGlyphs() const { return static_cast<int>(m_glyphs.size()); }

protected:
    void drawContent(QPainter& painter, QPointF origin) const override;

private:
    std::vector<CGGlyph> m_glyphs;
    std::vector<float> m_offsets;
};
