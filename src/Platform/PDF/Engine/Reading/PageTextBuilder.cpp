#include "PageTextBuilder.h"

#include "Accents.h"

#include <algorithm>
#include <cmath>
#include <utility>

static constexpr int mostAccents = 3; // over one letter

void PageTextBuilder::reserve(std::size_t characters) {
    m_text.string.reserve(qsizetype(characters));
    m_text.glyphs.reserve(characters);
}

void PageTextBuilder::addLine(const fz_stext_line& line, int block) {
    if (!m_text.string.isEmpty()) {
        m_text.string += QLatin1Char('\n');
        m_text.glyphs.emplace_back();
    }
    PageText::Line built;
    built.start = int(m_text.string.size());
    built.block = block;
    const QPointF along = m_toPage.map(QPointF(line.dir.x, line.dir.y)) - m_toPage.map(QPointF(0, 0));
    const double length = std::hypot(along.x(), along.y());
    built.direction = length > 0 ? along / length : QPointF(1, 0);
    m_box = {};
    for (const fz_stext_char* c = line.first_char; c; c = c->next) {
        if (const char16_t accent = Accents::combining(c->c); accent && isOver(*c, accent, line, built.start))
            continue;
        addCharacter(*c);
    }
    m_accents.clear();
    if (m_text.string.size() > built.start)
        built.bounds = QRectF(QPointF(m_box.left, m_box.bottom), QPointF(m_box.right, m_box.top));
    built.end = int(m_text.string.size());
    m_text.measureHeight(built);
    m_text.lines.push_back(built);
}

std::shared_ptr<const PageText> PageTextBuilder::take() {
    return std::make_shared<const PageText>(std::move(m_text));
}

bool PageTextBuilder::isOver(const fz_stext_char& c, char16_t accent, const fz_stext_line& line, int lineStart) {
    const auto extent = [&line](const fz_stext_char& of) {
        return Accents::Extent{double(of.quad.ll.x) * line.dir.x + double(of.quad.ll.y) * line.dir.y,
                               double(of.quad.lr.x) * line.dir.x + double(of.quad.lr.y) * line.dir.y};
    };
    const fz_stext_char* letter = c.next;
    for (int more = 0; letter && more < mostAccents && Accents::combining(letter->c); ++more)
        letter = letter->next;
    if (letter && Accents::covers(extent(c), extent(*letter)) &&
        !Accents::joined(letter->c, QString(QChar(accent))).isEmpty()) {
        m_accents += QChar(accent);
        return true;
    }
    // A combining accent goes with the letter before it wherever it is drawn.
    if (m_text.string.size() == lineStart || !m_accents.isEmpty() ||
        (accent != c.c && !Accents::covers(extent(c), extent(*m_last))))
        return false;
    const QString both = Accents::joined(m_text.string.back().unicode(), QString(QChar(accent)));
    if (both.size() != 1)
        return false;
    m_text.string.back() = both.front();
    return true;
}

void PageTextBuilder::Box::add(QPointF point) {
    left = std::min(left, point.x());
    bottom = std::min(bottom, point.y());
    right = std::max(right, point.x());
    top = std::max(top, point.y());
}

void PageTextBuilder::addCharacter(const fz_stext_char& c) {
    PageText::Glyph glyph;
    glyph.quad.upperLeft = map(c.quad.ul);
    glyph.quad.upperRight = map(c.quad.ur);
    glyph.quad.lowerLeft = map(c.quad.ll);
    glyph.quad.lowerRight = map(c.quad.lr);
    glyph.origin = map(c.origin);
    glyph.size = c.size;
    glyph.color = QRgb(c.color) | 0xFF000000U;
    glyph.font = fontIndex(c.font);
    char32_t character = char32_t(c.c);
    if (character < 32 || (character >= 0xD800 && character < 0xE000) || character > 0x10FFFF)
        character = U' ';
    m_last = &c;
    const qsizetype before = m_text.string.size();
    if (!m_accents.isEmpty()) {
        const QString accents = std::exchange(m_accents, {});
        const QString both = Accents::joined(c.c, accents);
        m_text.string += both.isEmpty() ? accents + QString::fromUcs4(&character, 1) : both;
    } else if (character <= 0xFFFF) {
        m_text.string += QChar(char16_t(character));
    } else {
        m_text.string += QString::fromUcs4(&character, 1);
    }
    m_text.glyphs.resize(m_text.glyphs.size() + std::size_t(m_text.string.size() - before), glyph);
    for (const QPointF& corner :
         {glyph.quad.upperLeft, glyph.quad.upperRight, glyph.quad.lowerLeft, glyph.quad.lowerRight})
        m_box.add(corner);
}

/// As QTransform::map, which looks up each time what kind of transformation it is.
QPointF PageTextBuilder::map(const fz_point& point) const {
    const double x = point.x;
    const double y = point.y;
    return {m_toPage.m11() * x + m_toPage.m21() * y + m_toPage.dx(),
            m_toPage.m12() * x + m_toPage.m22() * y + m_toPage.dy()};
}

std::uint16_t PageTextBuilder::fontIndex(fz_font* font) {
    if (font != m_lastFont || m_text.fonts.empty()) {
        m_lastFontIndex = lookUp(font);
        m_lastFont = font;
    }
    return m_lastFontIndex;
}

std::uint16_t PageTextBuilder::lookUp(fz_font* font) {
    const auto known = m_fontIndex.constFind(font);
    if (known != m_fontIndex.cend())
        return *known;
    PageText::Font described;
    described.name = QString::fromUtf8(fz_font_name(m_context, font));
    if (described.name.size() > 7 && described.name.at(6) == QLatin1Char('+'))
        described.name.remove(0, 7);
    described.bold = fz_font_is_bold(m_context, font) != 0;
    described.italic = fz_font_is_italic(m_context, font) != 0;
    described.serif = fz_font_is_serif(m_context, font) != 0;
    described.monospaced = fz_font_is_monospaced(m_context, font) != 0;
    const auto index = std::uint16_t(std::min<std::size_t>(m_text.fonts.size(), 0xFFFF));
    if (index == m_text.fonts.size())
        m_text.fonts.push_back(described);
    m_fontIndex.insert(font, index);
    return index;
}
