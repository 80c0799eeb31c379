#include "EraserCursorOverlay.h"

#include <QEvent>
#include <QPainter>

EraserCursorOverlay::EraserCursorOverlay(QWidget* parent) : QWidget(parent) {
    setObjectName(QStringLiteral("eraserRing"));
    setAttribute(Qt::WA_TransparentForMouseEvents);
    setGeometry(parent->rect());
    parent->installEventFilter(this);
    hide(); // a widget that lies over others costs each of their repaints something
}

EraserCursorOverlay::~EraserCursorOverlay() = default;

QRect EraserCursorOverlay::ringRect() const {
    if (!m_center)
        return {};
    constexpr double outerEdge = 2.5;
    const double reach = m_diameter / 2 + outerEdge;
    return QRectF(m_center->x() - reach, m_center->y() - reach, 2 * reach, 2 * reach).toAlignedRect();
}

void EraserCursorOverlay::show(const std::optional<QPointF>& center, double diameter) {
    if (center == m_center && diameter == m_diameter)
        return;
    update(ringRect());
    m_center = center;
    m_diameter = diameter;
    update(ringRect());
    setVisible(m_center.has_value());
    if (m_center)
        raise();
}

void EraserCursorOverlay::paintEvent(QPaintEvent*) {
    if (!m_center)
        return;
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    const double radius = m_diameter / 2;
    // A dark ring within a light one is seen on every page.
    painter.setPen(QPen(QColor(255, 255, 255, 230), 2.5));
    painter.drawEllipse(*m_center, radius + 0.5, radius + 0.5);
    painter.setPen(QPen(QColor(0, 0, 0, 191), 1));
    painter.drawEllipse(*m_center, radius, radius);
}

bool EraserCursorOverlay::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() == QEvent::Resize)
        setGeometry(parentWidget()->rect());
    return QWidget::eventFilter(watched, event);
}
