#include "TouchNavigation.h"

#include "PDFDocument.h"
#include "PDFPage.h"
#include "PageSurface.h"
#include "ViewScroller.h"

#include <QApplication>
#include <QContextMenuEvent>
#include <QLineF>
#include <QMouseEvent>
#include <QStyleHints>
#include <QTouchEvent>

#include <algorithm>
#include <chrono>
#include <cmath>
#include <utility>

// View points. A finger covers more than the tip of a mouse.
static constexpr double tapRadius = 12;
/// A finger that means to stay doesn't stray further; what goes further is a stroke for the tools that draw.
static constexpr double stillRadius = 3;
static constexpr double doubleTapRadius = 32;
// View points a second, below which pages don't go on by themselves.
static constexpr double slowestFling = 30;
/// Seconds in which a fling loses all but a third of its speed.
static constexpr double flingTime = 0.4;
/// Seconds without a move after which a finger throws nothing.
static constexpr double restingTime = 0.15;
static constexpr std::chrono::milliseconds flingInterval{8};

TouchNavigation::TouchNavigation(PageSurface& view, ViewScroller& scroller) : m_view(view), m_scroller(scroller) {
    m_view.viewport()->setAttribute(Qt::WA_AcceptTouchEvents);
    m_fling.setTimerType(Qt::PreciseTimer);
    m_fling.setInterval(flingInterval);
    connect(&m_fling, &QTimer::timeout, this, &TouchNavigation::glide);
}

TouchNavigation::~TouchNavigation() = default;

double TouchNavigation::devicePixelRatio() const {
    return m_view.viewport()->devicePixelRatioF();
}

void TouchNavigation::touch(QTouchEvent& event) {
    event.accept();
    m_time = event.timestamp();
    const auto& points = event.points();
    if (points.isEmpty() || event.type() == QEvent::TouchCancel) {
        if (m_mode == Mode::drawing)
            sendMouse(QEvent::MouseButtonRelease, m_lastPoint, Qt::NoButton);
        stop();
        m_holdTimer.stop();
        m_mode = Mode::none;
        return;
    }
    if (event.type() == QEvent::TouchBegin) {
        press(points.first().position());
        return;
    }
    if (points.size() >= 2 && m_mode != Mode::spent) {
        if (m_mode != Mode::pinching)
            startPinch();
        pinch(event);
    } else if (m_mode == Mode::pinching) {
        m_mode = Mode::spent; // the finger that is left would make the page jump
    } else if (event.type() == QEvent::TouchUpdate) {
        move(points.first().position());
    }
    if (event.type() == QEvent::TouchEnd) {
        release(points.first().position());
        m_pinchedPage.reset();
        m_mode = Mode::none;
    }
}

// One finger

void TouchNavigation::press(QPointF viewPoint) {
    m_stopsFling = m_fling.isActive();
    stop();
    m_scroller.stop();
    m_mode = Mode::resting;
    m_pressPoint = m_lastPoint = viewPoint;
    m_way.clear();
    m_holdTimer.start(QGuiApplication::styleHints()->mousePressAndHoldInterval(), this);
}

void TouchNavigation::move(QPointF viewPoint) {
    if (m_mode == Mode::resting && QLineF(m_pressPoint, viewPoint).length() > tapRadius) {
        m_holdTimer.stop();
        if (m_view.fingerDraws()) {
            startDrawing();
        } else {
            m_mode = Mode::scrolling;
            m_velocity = {};
            m_lastPoint = viewPoint;
        }
    }
    if (m_mode == Mode::resting)
        rest(viewPoint);
    else if (m_mode == Mode::drawing)
        sendMouse(QEvent::MouseMove, viewPoint, Qt::LeftButton);
    else if (m_mode == Mode::scrolling)
        drag(viewPoint);
    m_lastPoint = viewPoint;
}

/// True for a way that leads further than a finger strays that means to stay.
static bool isStroke(QPointF start, const std::vector<QPointF>& way) {
    return std::any_of(way.begin(), way.end(),
                       [&](QPointF point) { return QLineF(start, point).length() > stillRadius; });
}

/// A second finger or the menu may still come, so a stroke is drawn when it is sure to be one; then all of it.
void TouchNavigation::rest(QPointF viewPoint) {
    const QPointF last = m_way.empty() ? m_pressPoint : m_way.back();
    if (!m_view.fingerDraws() || viewPoint == last)
        return;
    m_way.push_back(viewPoint);
    if (isStroke(m_pressPoint, m_way)) // it draws slowly and doesn't stay
        m_holdTimer.start(QGuiApplication::styleHints()->mousePressAndHoldInterval(), this);
}

void TouchNavigation::startDrawing() {
    m_mode = Mode::drawing;
    sendMouse(QEvent::MouseButtonPress, m_pressPoint, Qt::LeftButton);
    for (const QPointF& point : std::exchange(m_way, {}))
        sendMouse(QEvent::MouseMove, point, Qt::LeftButton);
}

void TouchNavigation::release(QPointF viewPoint) {
    m_holdTimer.stop();
    if (m_mode == Mode::resting && m_view.fingerDraws() && isStroke(m_pressPoint, m_way))
        startDrawing();
    switch (m_mode) {
    case Mode::resting:
        if (!m_stopsFling)
            tap(m_pressPoint);
        break;
    case Mode::drawing:
        sendMouse(QEvent::MouseButtonRelease, viewPoint, Qt::NoButton);
        break;
    case Mode::scrolling:
        drag(viewPoint);
        if (std::hypot(m_velocity.x(), m_velocity.y()) >= slowestFling) {
            m_sinceFling.start();
            m_fling.start();
        }
        break;
    default:
        break;
    }
}

void TouchNavigation::tap(QPointF viewPoint) {
    const bool isSecond = m_lastTap && QLineF(*m_lastTap, viewPoint).length() < doubleTapRadius &&
                          m_sinceTap.elapsed() < QApplication::doubleClickInterval();
    m_lastTap = isSecond ? std::nullopt : std::optional(viewPoint);
    m_sinceTap.start();
    sendMouse(isSecond ? QEvent::MouseButtonDblClick : QEvent::MouseButtonPress, viewPoint, Qt::LeftButton);
    sendMouse(QEvent::MouseButtonRelease, viewPoint, Qt::NoButton);
}

void TouchNavigation::timerEvent(QTimerEvent*) {
    m_holdTimer.stop();
    if (m_mode != Mode::resting)
        return;
    m_mode = Mode::spent;
    QContextMenuEvent menu(QContextMenuEvent::Mouse, m_pressPoint.toPoint(),
                           m_view.viewport()->mapToGlobal(m_pressPoint.toPoint()));
    QCoreApplication::sendEvent(m_view.viewport(), &menu);
}

void TouchNavigation::sendMouse(QEvent::Type type, QPointF viewPoint, Qt::MouseButtons buttons) {
    const auto button = type == QEvent::MouseMove ? Qt::NoButton : Qt::LeftButton;
    QMouseEvent event(type, viewPoint, m_view.viewport()->mapToGlobal(viewPoint), button, buttons, Qt::NoModifier);
    QCoreApplication::sendEvent(m_view.viewport(), &event);
}

// Two fingers

void TouchNavigation::startPinch() {
    m_holdTimer.stop();
    if (m_mode == Mode::drawing)
        sendMouse(QEvent::MouseButtonRelease, m_lastPoint, Qt::NoButton);
    stop();
    m_pinchedPage.reset();
    m_mode = Mode::pinching;
}

void TouchNavigation::pinch(const QTouchEvent& event) {
    const QEventPoint& first = event.points()[0];
    const QEventPoint& second = event.points()[1];
    if (first.state() == QEventPoint::Pressed || second.state() == QEventPoint::Pressed)
        return; // where a finger was before is unknown
    const QPointF center = (first.position() + second.position()) / 2;
    if (!m_pinchedPage || m_pinchedPage->document() != m_view.document().get()) {
        const QPointF lastCenter = (first.lastPosition() + second.lastPosition()) / 2;
        m_pinchedPage = m_view.pageAt(lastCenter, true);
        if (!m_pinchedPage)
            return;
        m_pinchedPoint = m_view.convertToPage(lastCenter, *m_pinchedPage);
    }
    const double distance = QLineF(first.position(), second.position()).length();
    const double lastDistance = QLineF(first.lastPosition(), second.lastPosition()).length();
    if (distance > 1 && lastDistance > 1 && distance != lastDistance)
        m_view.zoomAt(center, distance / lastDistance);
    // What lay between the fingers at first stays there. Pages lie on whole pixels, and following from step to step
    // would add up their rounding.
    const QPointF way = m_view.convertFromPage(m_pinchedPoint, *m_pinchedPage) - center;
    if (way.manhattanLength() >= 1)
        m_scroller.scrollBy(way * devicePixelRatio());
}

// Scrolling

void TouchNavigation::drag(QPointF viewPoint) {
    const QPointF way = m_lastPoint - viewPoint;
    const double seconds = static_cast<double>(m_time - m_lastTime) / 1000;
    if (seconds > restingTime)
        m_velocity = {}; // the finger has rested
    else if (seconds > 0 && !way.isNull())
        m_velocity = m_velocity.isNull() ? way / seconds : (m_velocity + way / seconds) / 2;
    m_lastTime = m_time;
    m_lastPoint = viewPoint;
    if (!way.isNull())
        m_scroller.scrollBy(way * devicePixelRatio());
}

void TouchNavigation::glide() {
    const double seconds = static_cast<double>(m_sinceFling.restart()) / 1000;
    const double kept = std::exp(-seconds / flingTime);
    const QPointF before = m_scroller.offset();
    m_scroller.scrollBy(m_velocity * (flingTime * (1 - kept) * devicePixelRatio()));
    m_velocity *= kept;
    const bool isAtEnd = m_scroller.offset() == before && seconds > 0.05;
    if (isAtEnd || std::hypot(m_velocity.x(), m_velocity.y()) < slowestFling)
        m_fling.stop();
}

void TouchNavigation::stop() {
    m_fling.stop();
}
