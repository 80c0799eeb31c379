#pragma once

#include "MTDisplay.h"

#include <memory>

class MTFont;

/// A box of glyphs that can be shifted down, off its baseline.
class MTDisplayDS : public MTDisplay {
public:
    [[nodiscard]] double shiftDown() const { return m_shiftDown; }
    /// `ascent` and `descent` go with the glyphs.
    void setShiftDown(double shiftDown) {
        const double change = shiftDown - m_shiftDown;
        m_shiftDown = shiftDown;
        setExtent(ascent() - change, descent() + change, width());
    }

    [[nodiscard]] const std::shared_ptr<const MTFont>& font() const { return m_font; }

protected:
    /// The extent is that without a shift.
    MTDisplayDS(std::shared_ptr<const MTFont> font, QPointF position, MTRange range)
        : MTDisplay(position, range), m_font(std::move(font)) {}

    /// Where the glyphs' baseline begins.
    [[nodiscard]] QPointF glyphOrigin() const { return position() - QPointF(0, m_shiftDown); }

private:
    std::shared_ptr<const MTFont> m_font;
    double m_shiftDown = 0;
};
