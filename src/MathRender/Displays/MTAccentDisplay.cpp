#include "MTAccentDisplay.h"

#include "MTGlyphDisplay.h"
#include "MTMathListDisplay.h"

#include <algorithm>
#include <utility>

MTAccentDisplay::MTAccentDisplay(std::unique_ptr<MTGlyphDisplay> accent, std::unique_ptr<MTMathListDisplay> accentee,
                                 double height, QPointF position, MTRange range)
    : MTDisplay(position, range), m_accent(std::move(accent)), m_accentee(std::move(accentee)) {
    setExtent(std::max(m_accentee->ascent(), height), m_accentee->descent(), m_accentee->width());
}

MTAccentDisplay::~MTAccentDisplay() = default;

void MTAccentDisplay::drawContent(QPainter& painter, QPointF origin) const {
    m_accentee->drawAt(painter, origin + position());
    m_accent->drawAt(painter, origin + position());
}

void MTAccentDisplay::colorContent(const QColor& color) {
    m_accentee->setTextColor(color);
    m_accent->setTextColor(color);
}
