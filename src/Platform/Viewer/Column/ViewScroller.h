#pragma once

#include <QElapsedTimer>
#include <QObject>
#include <QPointF>
#include <QSizeF>
#include <QVariantAnimation>

class QScrollBar;

/// Where the window lies over the content, in device pixels, and how it gets elsewhere: at once, or by a short glide.
/// Keeps two scroll bars in step. A content may be longer than a scroll bar can count.
class ViewScroller : public QObject {
    Q_OBJECT

public:
    ViewScroller(QScrollBar& horizontal, QScrollBar& vertical, QObject* parent = nullptr);

    /// `step` is what one click on an arrow of a scroll bar moves. The offset is put back into its range.
    void setExtent(QSizeF content, QSizeF view, double step);

    /// The upper left corner of the window, on a whole pixel.
    [[nodiscard]] QPointF offset() const;
    [[nodiscard]] QPointF maximum() const { return m_maximum; }

    /// For the program: the content changed under the reader or he asked for another place. No `scrolled` is sent.
    /// A running glide goes on by the way that it still had to go when `keepsGliding`, and ends otherwise.
    void setOffset(QPointF offset, bool keepsGliding = false);

    /// For the reader's own scrolling; `scrolled` is sent.
    void scrollBy(QPointF way);
    /// The same, on a short way there. Ways add up when the next one is asked for during a glide.
    void glideBy(QPointF way);
    /// Ends a glide where it is.
    void stop();

    /// 1 when the last move went down the content, -1 when it went up.
    [[nodiscard]] int direction() const { return m_direction; }
    /// Device pixels a second, down or up, over the last moves; 0 after a pause.
    [[nodiscard]] double speed() const;

Q_SIGNALS:
    /// The reader moved the window.
    void scrolled();

private:
    [[nodiscard]] QPointF clamped(QPointF offset) const;
    bool place(QPointF offset);
    void measure(double way);
    void syncBars();
    void takeBar(Qt::Orientation orientation, int value);
    void advance(double progress);

    QScrollBar& m_horizontal;
    QScrollBar& m_vertical;
    double m_unit = 1; // device pixels for a step of a scroll bar
    bool m_syncing = false;
    QPointF m_offset; // not rounded, so that many small moves add up
    QPointF m_maximum;
    QVariantAnimation m_glide;
    QPointF m_glideStart;
    QPointF m_glideEnd;
    int m_direction = 1;
    double m_speed = 0;
    QElapsedTimer m_sinceMove;
};
