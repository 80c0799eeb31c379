#include "AssistantDock.h"

#include "AssistantPanel.h"
#include "AssistantResizeHandle.h"

#include <QVariantAnimation>

#include <algorithm>
#include <cmath>

static constexpr int slideMilliseconds = 180;

AssistantDock::AssistantDock(std::function<AssistantPanel*()> makePanel, QWidget* parent)
    : QWidget(parent), m_makePanel(std::move(makePanel)),
      m_handle(new AssistantResizeHandle(usualPanelWidth, minPanelWidth, maxPanelWidth, this)),
      m_panelAnimation(new QVariantAnimation(this)) {
    setObjectName(QStringLiteral("assistantDock"));
    m_panelAnimation->setDuration(slideMilliseconds);
    m_panelAnimation->setEasingCurve(QEasingCurve::OutCubic);
    m_panelAnimation->setStartValue(0.0);
    m_panelAnimation->setEndValue(1.0);
    connect(m_panelAnimation, &QVariantAnimation::valueChanged, this, &AssistantDock::updateWidth);
    connect(m_panelAnimation, &QVariantAnimation::finished, this, [this] { setVisible(m_isPanelShown); });
    connect(m_handle, &AssistantResizeHandle::panelWidthChanged, this, &AssistantDock::updateWidth);
    hide();
}

AssistantDock::~AssistantDock() = default;

void AssistantDock::setPanelShown(bool shown) {
    if (shown == m_isPanelShown) {
        if (shown)
            m_panel->setFocus();
        return;
    }
    m_isPanelShown = shown;
    if (!m_panel) {
        m_panel = m_makePanel();
        m_panel->setParent(this);
        m_panel->show();
    }
    // Backwards it begins where it is, also in the middle of the way.
    m_panelAnimation->setDirection(shown ? QAbstractAnimation::Forward : QAbstractAnimation::Backward);
    if (m_panelAnimation->state() != QAbstractAnimation::Running)
        m_panelAnimation->start();
    updateWidth();
    if (shown)
        show();
    Q_EMIT panelShownChanged(shown);
}

qreal AssistantDock::panelWidth() const {
    return m_handle->panelWidth();
}

void AssistantDock::setPanelWidth(qreal width) {
    m_handle->setPanelWidth(width);
}

void AssistantDock::setAvailableWidth(int width) {
    if (width == m_availableWidth)
        return;
    m_availableWidth = width;
    updateWidth();
}

int AssistantDock::fullWidth() const {
    const int wanted = static_cast<int>(std::lround(m_handle->panelWidth()));
    const int possible = std::max(static_cast<int>(minPanelWidth), m_availableWidth - m_handle->width());
    return std::min(wanted, possible) + m_handle->width();
}

void AssistantDock::updateWidth() {
    const double part = m_panelAnimation->currentValue().toDouble();
    const int width = std::max(1, static_cast<int>(std::lround(fullWidth() * part)));
    // The window can still be made so narrow that the panel has to give way.
    setMinimumWidth(std::min(width, static_cast<int>(minPanelWidth) + m_handle->width()));
    setMaximumWidth(width);
    updateGeometry();
}

QSize AssistantDock::sizeHint() const {
    return {maximumWidth(), QWidget::sizeHint().height()};
}

/// The panel has its full width from the start and comes into view with the dock's edge.
void AssistantDock::resizeEvent(QResizeEvent*) {
    m_handle->setGeometry(0, 0, m_handle->width(), height());
    if (m_panel)
        m_panel->setGeometry(m_handle->width(), 0, fullWidth() - m_handle->width(), height());
}
