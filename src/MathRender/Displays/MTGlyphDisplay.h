#pragma once

#include "CGGlyph.h"
#include "MTDisplayDS.h"

/// How far a glyph reaches, in points. Ascent and descent are those of the outline and never negative.
struct MTGlyphExtent {
    double ascent = 0;
    double descent = 0;
    double width = 0;
};

/// One glyph: a large operator, a delimiter, an accent.
class MTGlyphDisplay final : public MTDisplayDS {
public:
    MTGlyphDisplay(CGGlyph glyph, const MTGlyphExtent& extent, std::shared_ptr<const MTFont> font, QPointF position,
                   MTRange range);

    [[nodiscard]] CGGlyph glyph() const { return m_glyph; }

protected:
    void drawContent(QPainter& painter, QPointF origin) const override;

private:
    CGGlyph m_glyph;
};
