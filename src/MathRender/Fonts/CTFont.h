#pragma once

#include "CGFont.h"

#include <memory>

/// A font at a size: all measures are in points, y up. A light value over the shared file: making one costs next to
/// nothing. It never changes and may be used on any number of threads at once.
class CTFont {
public:
    CTFont(std::shared_ptr<const CGFont> cgFont, double size);

    [[nodiscard]] const std::shared_ptr<const CGFont>& cgFont() const { return m_cgFont; }
    [[nodiscard]] double size() const { return m_size; }

    /// The glyph of a Unicode character; 0 when the font has none.
    [[nodiscard]] CGGlyph glyph(char32_t character) const { return m_cgFont->glyph(character); }
    /// How far the glyph moves the pen to the right. It is not hinted, so that layout does not depend on the screen.
    [[nodiscard]] double advance(CGGlyph glyph) const { return m_cgFont->advance(glyph) * m_scale; }
    [[nodiscard]] GlyphBox boundingBox(CGGlyph glyph) const;

    /// Points to a font unit.
    [[nodiscard]] double scale() const { return m_scale; }

private:
    std::shared_ptr<const CGFont> m_cgFont;
    double m_size;
    double m_scale;
};
