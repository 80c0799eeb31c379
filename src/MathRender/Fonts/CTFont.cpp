#include "CTFont.h"

#include <utility>

CTFont::CTFont(std::shared_ptr<const CGFont> cgFont, double size)
    : m_cgFont(std::move(cgFont)), m_size(size), m_scale(size / m_cgFont->unitsPerEm()) {}

GlyphBox CTFont::boundingBox(CGGlyph glyph) const {
    const GlyphBox box = m_cgFont->boundingBox(glyph);
    return {box.left * m_scale, box.bottom * m_scale, box.right * m_scale, box.top * m_scale};
}
