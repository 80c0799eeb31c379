#pragma once

#include "MTDisplay.h"

#include <memory>

class MTMathListDisplay;

/// A numerator over a denominator, each centred, with a line between them or without. Lengths are from the baseline.
class MTFractionDisplay final : public MTDisplay {
public:
    struct Placement {
        double numeratorUp;
        double denominatorDown;
        double linePosition;  ///< how high the middle of the line is
        double lineThickness; ///< 0 for no line
    };

    MTFractionDisplay(std::unique_ptr<MTMathListDisplay> numerator, std::unique_ptr<MTMathListDisplay> denominator,
                      const Placement& placement, QPointF position, MTRange range);
    ~MTFractionDisplay() override;

    [[nodiscard]] const MTMathListDisplay& numerator() const { return *m_numerator; }
    [[nodiscard]] const MTMathListDisplay& denominator() const { return *m_denominator; }
    [[nodiscard]] double numeratorUp() const { return m_placement.numeratorUp; }
    [[nodiscard]] double denominatorDown() const { return m_placement.denominatorDown; }
    [[nodiscard]] double linePosition() const { return m_placement.linePosition; }
    [[nodiscard]] double lineThickness() const { return m_placement.lineThickness; }

protected:
    void drawContent(QPainter& painter, QPointF origin) const override;
    void updatePositions() override;
    void colorContent(const QColor& color) override;

private:
    std::unique_ptr<MTMathListDisplay> m_numerator;
    std::unique_ptr<MTMathListDisplay> m_denominator;
    Placement m_placement;
};
