#include "MTGlyphPainter.h"

#include "CTFont.h"

#include <QPainter>

namespace {

/// Glyphs are filled together, which is quicker, but not without limit: the time for a path grows faster than the path.
constexpr int mostElements = 2'000;

} // namespace

MTGlyphPainter::MTGlyphPainter(QPainter& painter, const CTFont& font, const QColor& color)
    : m_painter(painter), m_font(font), m_color(color) {
    // Not by odd and even: glyphs may overlap, as the parts of a tall brace do.
    m_path.setFillRule(Qt::WindingFill);
}

MTGlyphPainter::~MTGlyphPainter() {
    flush();
}

void MTGlyphPainter::flush() {
    if (m_path.isEmpty())
        return;
    m_painter.fillPath(m_path, m_color);
    m_path.clear();
    m_path.setFillRule(Qt::WindingFill);
}

void MTGlyphPainter::draw(CGGlyph glyph, QPointF origin) {
    // Element by element: a painter keeps notes in a path that it fills, so the font's own, which all threads share,
    // must never get near one.
    const QPainterPath& outline = m_font.cgFont()->glyphPath(glyph);
    const double scale = m_font.scale();
    const auto pointAt = [&](int index) {
        const QPainterPath::Element element = outline.elementAt(index);
        return QPointF(origin.x() + element.x * scale, origin.y() + element.y * scale);
    };
    const int count = outline.elementCount();
    for (int i = 0; i < count; ++i) {
        switch (outline.elementAt(i).type) {
        case QPainterPath::MoveToElement:
            m_path.moveTo(pointAt(i));
            break;
        case QPainterPath::LineToElement:
            m_path.lineTo(pointAt(i));
            break;
        case QPainterPath::CurveToElement:
            m_path.cubicTo(pointAt(i), pointAt(i + 1), pointAt(i + 2));
            i += 2;
            break;
        case QPainterPath::CurveToDataElement:
            break;
        }
    }
    if (m_path.elementCount() > mostElements)
        flush();
}
