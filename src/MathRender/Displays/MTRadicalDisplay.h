#pragma once

#include "MTDisplay.h"

#include <memory>

class MTDisplayDS;
class MTFontMathTable;
class MTMathListDisplay;

/// A root: the sign, a line from its top over the radicand, and the degree in front, if any.
class MTRadicalDisplay final : public MTDisplay {
public:
    struct Measures {
        double ascent; ///< with `topKern`
        double descent;
        double topKern;       ///< room above the line
        double lineThickness; ///< of the line over the radicand
    };

    /// `glyph` is the sign, at the origin.
    MTRadicalDisplay(std::unique_ptr<MTMathListDisplay> radicand, std::unique_ptr<MTDisplayDS> glyph,
                     const Measures& measures, QPointF position, MTRange range);
    ~MTRadicalDisplay() override;

    [[nodiscard]] const MTMathListDisplay& radicand() const { return *m_radicand; }
    /// Null for a square root.
    [[nodiscard]] const MTMathListDisplay* degree() const { return m_degree.get(); }
    [[nodiscard]] const MTDisplayDS& radicalGlyph() const { return *m_radicalGlyph; }
    /// How far the degree pushes the sign to the right; never negative.
    [[nodiscard]] double radicalShift() const { return m_radicalShift; }
    [[nodiscard]] double topKern() const { return m_topKern; }
    [[nodiscard]] double lineThickness() const { return m_lineThickness; }

    /// Puts the degree in front, by the constants of the font that the radical is set in. At most once.
    void setDegree(std::unique_ptr<MTMathListDisplay> degree, const MTFontMathTable& fontMetrics);

protected:
    void drawContent(QPainter& painter, QPointF origin) const override;
    void updatePositions() override;
    void colorContent(const QColor& color) override;

private:
    std::unique_ptr<MTMathListDisplay> m_radicand;
    std::unique_ptr<MTMathListDisplay> m_degree;
    std::unique_ptr<MTDisplayDS> m_radicalGlyph;
    double m_radicalShift = 0;
    QPointF m_degreeOffset; ///< from the radical's position
    double m_topKern;
    double m_lineThickness;
};
