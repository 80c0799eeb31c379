#include "TypingIndicator.h"

#include <QPainter>
#include <QVariantAnimation>

#include <chrono>

using namespace std::chrono_literals;

static constexpr int dotCount = 3;
static constexpr auto period = 350ms;
static constexpr auto changeTime = 250ms;
static constexpr qreal dotDiameter = 8;
static constexpr qreal dotDistance = 15; // from middle to middle
static constexpr qreal largeScale = 1.3;
static constexpr qreal smallScale = 0.75;
static constexpr qreal colorOpacity = 0.6;
static constexpr qreal smallDotOpacity = 0.5;

TypingIndicator::TypingIndicator(QWidget* parent) : QWidget(parent), m_change(new QVariantAnimation(this)) {
    setObjectName(QStringLiteral("typingIndicator"));
    setAccessibleName(QStringLiteral("The assistant is answering"));
    setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
    m_timer.setInterval(period);
    m_change->setDuration(static_cast<int>(std::chrono::milliseconds(changeTime).count()));
    m_change->setStartValue(0.0);
    m_change->setEndValue(1.0);
    m_change->setEasingCurve(QEasingCurve::InOutQuad);
    connect(&m_timer, &QTimer::timeout, this, &TypingIndicator::advance);
    connect(m_change, &QVariantAnimation::valueChanged, this, [this] { update(); });
}

TypingIndicator::~TypingIndicator() = default;

QSize TypingIndicator::sizeHint() const {
    return {static_cast<int>((dotCount - 1) * dotDistance + largeScale * dotDiameter) + 4, 24};
}

void TypingIndicator::advance() {
    m_formerPhase = m_phase;
    m_phase = (m_phase + 1) % dotCount;
    m_change->start();
}

void TypingIndicator::showEvent(QShowEvent* event) {
    m_timer.start();
    QWidget::showEvent(event);
}

void TypingIndicator::hideEvent(QHideEvent* event) {
    m_timer.stop();
    m_change->stop();
    QWidget::hideEvent(event);
}

void TypingIndicator::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    const qreal progress = m_change->state() == QAbstractAnimation::Running ? m_change->currentValue().toReal() : 1.0;
    for (int dot = 0; dot < dotCount; ++dot) {
        // How much of the large dot it is now.
        const qreal size = (dot == m_phase ? progress : 0.0) +
                           (dot == m_formerPhase && m_formerPhase != m_phase ? 1.0 - progress : 0.0);
        const qreal radius = dotDiameter / 2 * (smallScale + (largeScale - smallScale) * size);
        QColor color = palette().color(QPalette::WindowText);
        color.setAlphaF(static_cast<float>(colorOpacity * (smallDotOpacity + (1.0 - smallDotOpacity) * size)));
        painter.setBrush(color);
        painter.drawEllipse(QPointF(2 + largeScale * dotDiameter / 2 + dot * dotDistance, height() / 2.0), radius,
                            radius);
    }
}
