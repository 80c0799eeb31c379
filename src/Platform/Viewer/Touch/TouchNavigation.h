#pragma once

#include <QBasicTimer>
#include <QElapsedTimer>
#include <QEvent>
#include <QObject>
#include <QPointF>
#include <QTimer>

#include <memory>
#include <optional>
#include <vector>

class PDFPage;
class PageSurface;
class QTouchEvent;
class ViewScroller;

/// What fingers on the screen do to a view: one scrolls and flings the pages, two zoom and move them, a tap is a click,
/// and a finger that stays asks for the menu. While `PageSurface::fingerDraws` says so, one finger is the mouse. All of
/// these reach the view as the events of a mouse, to which it reacts in the way it does. Main thread only.
class TouchNavigation : public QObject {
    Q_OBJECT

public:
    /// Both outlive it.
    TouchNavigation(PageSurface& view, ViewScroller& scroller);
    ~TouchNavigation() override;

    /// Touches of the viewport. Always takes them.
    void touch(QTouchEvent& event);
    /// Ends a fling, when the pages move by other means.
    void stop();

protected:
    void timerEvent(QTimerEvent* event) override;

private:
    enum class Mode {
        none,
        resting,   ///< one finger that has hardly moved yet
        scrolling, ///< one finger, or the fling after it
        drawing,   ///< one finger, which is the mouse
        pinching,  ///< two fingers
        spent,     ///< whatever the fingers do until all are gone
    };

    void press(QPointF viewPoint);
    void move(QPointF viewPoint);
    void rest(QPointF viewPoint);
    void startDrawing();
    void release(QPointF viewPoint);
    void drag(QPointF viewPoint);
    void glide();
    void pinch(const QTouchEvent& event);
    void startPinch();
    void tap(QPointF viewPoint);
    void sendMouse(QEvent::Type type, QPointF viewPoint, Qt::MouseButtons buttons);
    [[nodiscard]] double devicePixelRatio() const;

    PageSurface& m_view;
    ViewScroller& m_scroller;
    Mode m_mode = Mode::none;
    QPointF m_pressPoint;
    std::vector<QPointF> m_way; // of a finger that rests but will perhaps draw, behind the press; view points
    QPointF m_lastPoint;
    quint64 m_lastTime = 0; // of the last one that scrolled
    QPointF m_velocity;     // of the pages, in view points a second
    QTimer m_fling;         // runs while the pages go on by themselves
    QElapsedTimer m_sinceFling;
    quint64 m_time = 0;                     // of the touch that is being handled, milliseconds
    std::shared_ptr<PDFPage> m_pinchedPage; // null until the fingers have moved
    QPointF m_pinchedPoint;                 // of that page, between the fingers
    bool m_stopsFling = false;              // the finger came down on moving pages: that is no tap
    QBasicTimer m_holdTimer;
    std::optional<QPointF> m_lastTap;
    QElapsedTimer m_sinceTap;
};
