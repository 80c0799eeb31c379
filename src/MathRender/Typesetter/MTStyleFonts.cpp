#include "MTStyleFonts.h"

#include "MTFont.h"
#include "QuilloAssert.h"

#include <utility>

MTStyleFonts::MTStyleFonts(std::shared_ptr<const MTFont> font) : m_font(std::move(font)) {
    QUILLO_ASSERT(m_font, "A formula is set in a font.");
}

const std::shared_ptr<const MTFont>& MTStyleFonts::fontForStyle(MTLineStyle style) {
    if (style <= MTLineStyle::text)
        return m_font;
    std::shared_ptr<const MTFont>& font = style == MTLineStyle::script ? m_scriptFont : m_scriptOfScriptFont;
    if (!font)
        font = m_font->copy(getStyleSize(style, *m_font));
    return font;
}

double MTStyleFonts::getStyleSize(MTLineStyle style, const MTFont& font) {
    switch (style) {
    case MTLineStyle::display:
    case MTLineStyle::text:
        break;
    case MTLineStyle::script:
        return font.fontSize() * font.mathTable().scriptPercentScaleDown();
    case MTLineStyle::scriptOfScript:
        return font.fontSize() * font.mathTable().scriptScriptPercentScaleDown();
    }
    return font.fontSize();
}
