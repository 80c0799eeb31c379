#include "GlyphNames.h"

#include <utility>

GlyphNames::GlyphNames(std::vector<QString> fontNames) : m_names(std::move(fontNames)) {
    m_glyphs.reserve(static_cast<qsizetype>(m_names.size()));
    std::vector<std::size_t> nameless;
    for (std::size_t glyph = 0; glyph < m_names.size(); ++glyph) {
        if (m_names[glyph].isEmpty() || m_glyphs.contains(m_names[glyph]))
            nameless.push_back(glyph);
        else
            m_glyphs.insert(m_names[glyph], static_cast<CGGlyph>(glyph));
    }
    for (const std::size_t glyph : nameless) {
        QString name = QStringLiteral("gid%1").arg(glyph);
        while (m_glyphs.contains(name))
            name += QLatin1Char('_');
        m_glyphs.insert(name, static_cast<CGGlyph>(glyph));
        m_names[glyph] = name;
    }
}
