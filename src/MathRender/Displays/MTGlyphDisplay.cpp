#include "MTGlyphDisplay.h"

#include "MTFont.h"
#include "MTGlyphPainter.h"

#include <utility>

MTGlyphDisplay::MTGlyphDisplay(CGGlyph glyph, const MTGlyphExtent& extent, std::shared_ptr<const MTFont> font,
                               QPointF position, MTRange range)
    : MTDisplayDS(std::move(font), position, range), m_glyph(glyph) {
    setExtent(extent.ascent, extent.descent, extent.width);
}

void MTGlyphDisplay::drawContent(QPainter& painter, QPointF origin) const {
    MTGlyphPainter(painter, *font()->ctFont(), textColor()).draw(m_glyph, origin + glyphOrigin());
}
