#pragma once

#include "CGGlyph.h"

#include <QColor>
#include <QPainterPath>
#include <QPointF>

class CTFont;
class QPainter;

/// Draws glyphs of one font in one colour. Outlines are filled rather than text drawn: they are exact at any
/// resolution, without hinting and without rounding to pixels, and need no font of the window system, so any thread can
/// draw them.
class MTGlyphPainter {
public:
    MTGlyphPainter(QPainter& painter, const CTFont& font, const QColor& color);
    ~MTGlyphPainter();
    MTGlyphPainter(const MTGlyphPainter&) = delete;
    MTGlyphPainter& operator=(const MTGlyphPainter&) = delete;

    /// Draws a glyph with its origin at `origin`, y up. It may appear only at the end of this object's life.
    void draw(CGGlyph glyph, QPointF origin);

private:
    void flush();

    QPainter& m_painter;
    const CTFont& m_font;
    QColor m_color;
    QPainterPath m_path; ///< what is to be filled
};
