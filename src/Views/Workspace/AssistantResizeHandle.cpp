#include "AssistantResizeHandle.h"

#include "Palette.h"

#include <QKeyEvent>
#include <QMouseEvent>
#include <QPainter>
#include <QVariantAnimation>

#include <algorithm>

static constexpr int stripWidth = 7;
static constexpr int lineWidth = 1;
static constexpr int litLineWidth = 3;
static constexpr int fadeMilliseconds = 120;
static constexpr qreal keyboardStep = 16;

AssistantResizeHandle::AssistantResizeHandle(qreal panelWidth, qreal minWidth, qreal maxWidth, QWidget* parent)
    : QWidget(parent), m_panelWidth(std::clamp(panelWidth, minWidth, maxWidth)), m_minWidth(minWidth),
      m_maxWidth(maxWidth), m_light(new QVariantAnimation(this)) {
    setObjectName(QStringLiteral("assistantResizeHandle"));
    setAccessibleName(QStringLiteral("Width of the assistant"));
    setToolTip(QStringLiteral("Drag to change the width of the assistant"));
    setFixedWidth(stripWidth);
    setCursor(Qt::SplitHCursor);
    setFocusPolicy(Qt::TabFocus);
    m_light->setDuration(fadeMilliseconds);
    m_light->setEasingCurve(QEasingCurve::OutQuad);
    m_light->setStartValue(0.0);
    m_light->setEndValue(0.0);
    connect(m_light, &QVariantAnimation::valueChanged, this, [this] { update(); });
}

AssistantResizeHandle::~AssistantResizeHandle() = default;

void AssistantResizeHandle::setPanelWidth(qreal width) {
    const qreal held = std::min(std::max(width, m_minWidth), m_maxWidth);
    if (held == m_panelWidth)
        return;
    m_panelWidth = held;
    Q_EMIT panelWidthChanged(held);
}

void AssistantResizeHandle::enterEvent(QEnterEvent* event) {
    m_isHovering = true;
    updateLight();
    QWidget::enterEvent(event);
}

void AssistantResizeHandle::leaveEvent(QEvent* event) {
    m_isHovering = false;
    updateLight();
    QWidget::leaveEvent(event);
}

void AssistantResizeHandle::mousePressEvent(QMouseEvent* event) {
    if (event->button() != Qt::LeftButton)
        return;
    m_isDragging = true;
    m_pressX = event->globalPosition().x();
    updateLight();
}

void AssistantResizeHandle::mouseMoveEvent(QMouseEvent* event) {
    if (!m_isDragging)
        return;
    if (!m_widthAtDragStart)
        m_widthAtDragStart = m_panelWidth;
    // On the screen, as the strip itself moves along.
    setPanelWidth(*m_widthAtDragStart - (event->globalPosition().x() - m_pressX));
}

void AssistantResizeHandle::mouseReleaseEvent(QMouseEvent* event) {
    if (event->button() != Qt::LeftButton)
        return;
    m_isDragging = false;
    m_widthAtDragStart = std::nullopt;
    updateLight();
}

void AssistantResizeHandle::keyPressEvent(QKeyEvent* event) {
    if (event->key() == Qt::Key_Left)
        setPanelWidth(m_panelWidth + keyboardStep);
    else if (event->key() == Qt::Key_Right)
        setPanelWidth(m_panelWidth - keyboardStep);
    else
        QWidget::keyPressEvent(event);
}

void AssistantResizeHandle::updateLight() {
    const qreal wanted = m_isHovering || m_isDragging ? 1.0 : 0.0;
    if (m_light->endValue().toReal() == wanted)
        return;
    const qreal present = m_light->currentValue().toReal();
    m_light->stop();
    m_light->setStartValue(present);
    m_light->setEndValue(wanted);
    m_light->start();
}

void AssistantResizeHandle::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    const auto drawLine = [&](QColor color, qreal opacity, int width) {
        color.setAlphaF(static_cast<float>(opacity));
        painter.fillRect(QRectF((stripWidth - width) / 2.0, 0, width, height()), color);
    };
    drawLine(palette().color(QPalette::WindowText), 0.2, lineWidth);
    const qreal light = hasFocus() ? 1.0 : m_light->currentValue().toReal();
    if (light > 0)
        drawLine(hasFocus() ? palette().color(QPalette::Highlight) : Palette::brandBlue, light, litLineWidth);
}
