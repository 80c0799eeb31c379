#include "ViewScroller.h"

#include <QApplication>
#include <QScrollBar>
#include <QStyle>

#include <algorithm>
#include <cmath>

static constexpr int glideMilliseconds = 140;
/// Of the width of the view.
static constexpr double sliver = 0.005;
static constexpr double largestBarRange = 1 << 30;
/// After a pause of this length the next move starts from rest, in milliseconds.
static constexpr qint64 restAfter = 200;

ViewScroller::ViewScroller(QScrollBar& horizontal, QScrollBar& vertical, QObject* parent)
    : QObject(parent), m_horizontal(horizontal), m_vertical(vertical) {
    m_glide.setStartValue(0.0);
    m_glide.setEndValue(1.0);
    m_glide.setDuration(glideMilliseconds);
    m_glide.setEasingCurve(QEasingCurve::OutCubic);
    connect(&m_glide, &QVariantAnimation::valueChanged, this,
            [this](const QVariant& progress) { advance(progress.toDouble()); });
    connect(&horizontal, &QScrollBar::valueChanged, this, [this](int value) { takeBar(Qt::Horizontal, value); });
    connect(&vertical, &QScrollBar::valueChanged, this, [this](int value) { takeBar(Qt::Vertical, value); });
}

void ViewScroller::setExtent(QSizeF content, QSizeF view, double step) {
    // Pages of one size often differ by a fraction of a point: a sliver beside the view is no place to scroll to.
    const double beside = content.width() - view.width();
    m_maximum = {beside > view.width() * sliver ? beside : 0.0, std::max(0.0, content.height() - view.height())};
    m_unit = std::max(1.0, std::ceil(std::max(m_maximum.x(), m_maximum.y()) / largestBarRange));
    m_syncing = true;
    const auto setRange = [&](QScrollBar& bar, double maximum, double page) {
        bar.setRange(0, static_cast<int>(maximum / m_unit));
        bar.setPageStep(std::max(1, static_cast<int>(page / m_unit)));
        bar.setSingleStep(std::max(1, static_cast<int>(step / m_unit)));
    };
    setRange(m_horizontal, m_maximum.x(), view.width());
    setRange(m_vertical, m_maximum.y(), view.height());
    m_syncing = false;
    m_offset = clamped(m_offset);
    syncBars();
}

QPointF ViewScroller::offset() const {
    return {std::round(m_offset.x()), std::round(m_offset.y())};
}

QPointF ViewScroller::clamped(QPointF offset) const {
    return {std::clamp(offset.x(), 0.0, m_maximum.x()), std::clamp(offset.y(), 0.0, m_maximum.y())};
}

/// True when the window moved.
bool ViewScroller::place(QPointF offset) {
    const QPointF before = m_offset;
    m_offset = clamped(offset);
    syncBars();
    return m_offset != before;
}

void ViewScroller::setOffset(QPointF offset, bool keepsGliding) {
    const QPointF before = m_offset;
    if (!keepsGliding)
        stop();
    place(offset);
    m_glideStart += m_offset - before;
    m_glideEnd += m_offset - before;
}

void ViewScroller::scrollBy(QPointF way) {
    stop();
    measure(way.y());
    if (place(m_offset + way))
        Q_EMIT scrolled();
}

void ViewScroller::glideBy(QPointF way) {
    // A style without animations says so with a duration of zero.
    if (QApplication::style()->styleHint(QStyle::SH_Widget_Animation_Duration) <= 0) {
        scrollBy(way);
        return;
    }
    const bool gliding = m_glide.state() == QAbstractAnimation::Running;
    m_glideEnd = clamped((gliding ? m_glideEnd : m_offset) + way);
    m_glideStart = m_offset;
    m_glide.stop();
    if (m_glideEnd != m_glideStart)
        m_glide.start();
}

void ViewScroller::stop() {
    m_glide.stop();
}

void ViewScroller::advance(double progress) {
    const QPointF offset = m_glideStart + (m_glideEnd - m_glideStart) * progress;
    measure(offset.y() - m_offset.y());
    if (place(offset))
        Q_EMIT scrolled();
}

void ViewScroller::measure(double way) {
    if (way == 0)
        return;
    m_direction = way > 0 ? 1 : -1;
    const qint64 pause = m_sinceMove.isValid() ? m_sinceMove.restart() : restAfter;
    if (!m_sinceMove.isValid())
        m_sinceMove.start();
    if (pause >= restAfter)
        m_speed = 0;
    else
        m_speed += (std::abs(way) * 1000 / double(std::max<qint64>(pause, 1)) - m_speed) / 4;
}

double ViewScroller::speed() const {
    return m_sinceMove.isValid() && !m_sinceMove.hasExpired(restAfter) ? m_speed : 0;
}

void ViewScroller::syncBars() {
    m_syncing = true;
    m_horizontal.setValue(static_cast<int>(std::round(m_offset.x() / m_unit)));
    m_vertical.setValue(static_cast<int>(std::round(m_offset.y() / m_unit)));
    m_syncing = false;
}

void ViewScroller::takeBar(Qt::Orientation orientation, int value) {
    if (m_syncing)
        return;
    const double position = value * m_unit;
    scrollBy(orientation == Qt::Horizontal ? QPointF(position - m_offset.x(), 0) : QPointF(0, position - m_offset.y()));
}
