#include "SignaturePadStrokes.h"

#include <QPainter>
#include <QPen>

#include <utility>

static constexpr qreal lineWidth = 3;
static constexpr qreal miterLimit = 10;
static constexpr int scale = 2;

static QPen pen() {
    QPen pen(Qt::black, lineWidth, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin);
    pen.setMiterLimit(miterLimit);
    return pen;
}

void SignaturePadStrokes::addPoint(QPointF point) {
    m_currentStroke.push_back(point);
}

void SignaturePadStrokes::endStroke() {
    if (!m_currentStroke.empty())
        m_strokes.push_back(std::exchange(m_currentStroke, {}));
}

void SignaturePadStrokes::clear() {
    m_strokes.clear();
    m_currentStroke.clear();
}

QPainterPath SignaturePadStrokes::smoothedPath(std::span<const QPointF> points) {
    QPainterPath path;
    if (points.empty())
        return path;
    path.moveTo(points.front());
    for (std::size_t i = 1; i + 1 < points.size(); ++i)
        path.quadTo(points[i], (points[i] + points[i + 1]) / 2);
    path.lineTo(points.back());
    return path;
}

void SignaturePadStrokes::draw(QPainter& painter) const {
    painter.setRenderHint(QPainter::Antialiasing);
    for (const std::vector<QPointF>& stroke : m_strokes)
        painter.strokePath(smoothedPath(stroke), pen());
    painter.strokePath(smoothedPath(m_currentStroke), pen());
}

QImage SignaturePadStrokes::rendered() const {
    QImage image(padSize * scale, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    QPainter painter(&image);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.scale(scale, scale);
    for (const std::vector<QPointF>& stroke : m_strokes)
        painter.strokePath(smoothedPath(stroke), pen());
    painter.end();
    return image;
}
