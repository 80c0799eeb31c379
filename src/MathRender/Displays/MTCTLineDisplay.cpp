#include "MTCTLineDisplay.h"

#include "MTFont.h"
#include "MTGlyphPainter.h"

#include <utility>

MTCTLineDisplay::MTCTLineDisplay(MTTextRun line, std::shared_ptr<const MTFont> font,
                                 std::vector<std::shared_ptr<MTMathAtom>> atoms, QPointF position, MTRange range)
    : MTDisplay(position, range), m_line(std::move(line)), m_font(std::move(font)), m_atoms(std::move(atoms)) {
    setExtent(m_line.ascent, m_line.descent, m_line.width);
}

void MTCTLineDisplay::drawContent(QPainter& painter, QPointF origin) const {
    const QPointF start = origin + position();
    const auto drawGlyphs = [&](std::size_t first, std::size_t end, const QColor& color) {
        MTGlyphPainter glyphPainter(painter, *m_font->ctFont(), color);
        for (std::size_t i = first; i < end; ++i)
            glyphPainter.draw(m_line.glyphs[i].glyph, start + QPointF(m_line.glyphs[i].x, 0));
    };
    std::size_t drawn = 0;
    for (const MTTextRun::ColoredGlyphs& colored : m_line.colors) {
        drawGlyphs(drawn, colored.first, textColor());
        drawGlyphs(colored.first, colored.end, colored.color);
        drawn = colored.end;
    }
    drawGlyphs(drawn, m_line.glyphs.size(), textColor());
}

void MTCTLineDisplay::colorContent(const QColor&) {
    m_line.colors.clear();
}
