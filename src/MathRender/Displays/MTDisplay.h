#pragma once

#include "MTRange.h"

#include <QColor>
#include <QPointF>
#include <QRectF>

#include <optional>

class QPainter;

/// A box of a formula that is laid out: where it is, how far it reaches, and how it is drawn. Lengths are in points and
/// y grows upward. A box is placed by the left end of its baseline, in the coordinates of the list display that it is
/// in, however many other boxes are between them; only `MTMathListDisplay` and `MTAccentDisplay` begin coordinates of
/// their own. Any thread may use a tree of boxes, one at a time; drawing only reads, so that any number may draw.
class MTDisplay {
public:
    /// The range of a box that stands for no atom.
    static constexpr MTRange notFound{-1, 0};

    virtual ~MTDisplay();
    MTDisplay(const MTDisplay&) = delete;
    MTDisplay& operator=(const MTDisplay&) = delete;

    /// How far the box reaches above and below its baseline. One of them is negative when it is all on one side.
    [[nodiscard]] double ascent() const { return m_ascent; }
    [[nodiscard]] double descent() const { return m_descent; }
    [[nodiscard]] double width() const { return m_width; }
    /// For spacing beside what is drawn: nothing moves within the box.
    void setWidth(double width) { m_width = width; }

    [[nodiscard]] QPointF position() const { return m_position; }
    /// Moves all that is in the box with it.
    void setPosition(QPointF position);

    /// The atoms that it stands for, counted in their list.
    [[nodiscard]] MTRange range() const { return m_range; }
    void setRange(MTRange range) { m_range = range; }

    [[nodiscard]] bool hasScript() const { return m_hasScript; }
    void setHasScript(bool hasScript) { m_hasScript = hasScript; }

    /// What glyphs and lines are drawn in; black at first.
    [[nodiscard]] const QColor& textColor() const { return m_textColor; }
    /// Colours the box and all in it, but for boxes with a local colour, which keep it.
    void setTextColor(const QColor& color);

    /// The colour that the formula asks for here. It holds against any other.
    [[nodiscard]] const std::optional<QColor>& localTextColor() const { return m_localTextColor; }
    void setLocalTextColor(const QColor& color);

    /// What `displayBounds` is filled with, under all else.
    [[nodiscard]] const std::optional<QColor>& localBackgroundColor() const { return m_localBackgroundColor; }
    void setLocalBackgroundColor(std::optional<QColor> color) { m_localBackgroundColor = color; }

    [[nodiscard]] QRectF displayBounds() const;

    /// Draws on a painter whose y axis points upward. The state of the painter is left as it was.
    void draw(QPainter& painter) const;

    /// `draw` for a box of another one: `origin` is where the coordinates of `position` begin, and the painter is set
    /// up for drawing.
    void drawAt(QPainter& painter, QPointF origin) const;

protected:
    MTDisplay(QPointF position, MTRange range) : m_position(position), m_range(range) {}

    void setExtent(double ascent, double descent, double width) {
        m_ascent = ascent;
        m_descent = descent;
        m_width = width;
    }

    /// Draws what is over the background. `origin` as in `drawAt`.
    virtual void drawContent(QPainter& painter, QPointF origin) const = 0;
    /// Places the boxes in this one after it was moved.
    virtual void updatePositions() {}
    /// Gives `color` to all in this box, after it got it itself.
    virtual void colorContent(const QColor& color);

private:
    double m_ascent = 0;
    double m_descent = 0;
    double m_width = 0;
    QPointF m_position;
    MTRange m_range;
    bool m_hasScript = false;
    QColor m_textColor{Qt::black};
    std::optional<QColor> m_localTextColor;
    std::optional<QColor> m_localBackgroundColor;
};
