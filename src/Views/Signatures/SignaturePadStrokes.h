#pragma once

#include <QImage>
#include <QPainterPath>
#include <QPointF>
#include <QSize>

#include <span>
#include <vector>

class QPainter;

/// What has been drawn on the signature pad: strokes of points in the pad's coordinates (origin upper left, y down).
class SignaturePadStrokes {
public:
    static constexpr QSize padSize{420, 180};

    /// Appends to the stroke that is being drawn.
    void addPoint(QPointF point);
    /// The stroke is finished, if there is one.
    void endStroke();
    void clear();

    /// Whether no stroke is finished.
    [[nodiscard]] bool isEmpty() const { return m_strokes.empty(); }

    /// Draws all strokes in black, the one that is being drawn among them.
    void draw(QPainter& painter) const;

    /// The finished strokes on a transparent background, two pixels for each unit of the pad.
    [[nodiscard]] QImage rendered() const;

    /// Through the middles between the points, which are the control points of quadratic curves. A single point gives
    /// a path that draws nothing.
    [[nodiscard]] static QPainterPath smoothedPath(std::span<const QPointF> points);

private:
    std::vector<std::vector<QPointF>> m_strokes;
    std::vector<QPointF> m_currentStroke;
};
