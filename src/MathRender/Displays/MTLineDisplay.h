#pragma once

#include "MTDisplay.h"

#include <memory>

class MTMathListDisplay;

/// A list with a line over it or under it.
class MTLineDisplay final : public MTDisplay {
public:
    struct Line {
        double shiftUp; ///< how high its middle is above the baseline; negative for a line below
        double thickness;
    };

    MTLineDisplay(std::unique_ptr<MTMathListDisplay> inner, const Line& line, double ascent, double descent,
                  QPointF position, MTRange range);
    ~MTLineDisplay() override;

    [[nodiscard]] const MTMathListDisplay& inner() const { return *m_inner; }
    [[nodiscard]] double lineShiftUp() const { return m_line.shiftUp; }
    [[nodiscard]] double lineThickness() const { return m_line.thickness; }

protected:
    void drawContent(QPainter& painter, QPointF origin) const override;
    void updatePositions() override;
    void colorContent(const QColor& color) override;

private:
    std::unique_ptr<MTMathListDisplay> m_inner;
    Line m_line;
};
