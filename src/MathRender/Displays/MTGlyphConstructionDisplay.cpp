#include "MTGlyphConstructionDisplay.h"

#include "MTFont.h"
#include "MTGlyphPainter.h"

#include <utility>

MTGlyphConstructionDisplay::MTGlyphConstructionDisplay(std::vector<CGGlyph> glyphs, std::vector<float> offsets,
                                                       double height, double width, std::shared_ptr<const MTFont> font)
    : MTDisplayDS(std::move(font), {}, notFound), m_glyphs(std::move(glyphs)), m_offsets(std::move(offsets)) {
    setExtent(height, 0, width);
}

void MTGlyphConstructionDisplay::drawContent(QPainter& painter, QPointF origin) const {
    const QPointF start = origin + glyphOrigin();
    MTGlyphPainter glyphPainter(painter, *font()->ctFont(), textColor());
    for (std::size_t i = 0; i < m_glyphs.size(); ++i)
        glyphPainter.draw(m_glyphs[i], start + QPointF(0, static_cast<double>(m_offsets[i])));
}
