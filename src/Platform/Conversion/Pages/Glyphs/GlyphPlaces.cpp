#include "GlyphPlaces.h"

#include "GlyphText.h"

#include <algorithm>

void GlyphPlaces::add(int page, const QString& text, const std::vector<QPointF>& places) {
    auto number = m_numbers.constFind(text);
    if (number == m_numbers.constEnd()) {
        number = m_numbers.insert(text, quint32(m_texts.size()));
        m_texts.push_back(GlyphText::typed(text));
    }
    m_pages.resize(std::max(m_pages.size(), std::size_t(page) + 1));
    Page& onPage = m_pages[std::size_t(page)];
    const auto cluster = quint32(onPage.texts.size());
    onPage.texts.push_back(*number);
    for (const QPointF place : places)
        onPage.glyphs.push_back({float(place.x()), float(place.y()), cluster});
}

const GlyphPlaces::Page* GlyphPlaces::page(int number) const {
    if (std::size_t(number) >= m_pages.size() || m_pages[std::size_t(number)].glyphs.empty())
        return nullptr;
    return &m_pages[std::size_t(number)];
}
