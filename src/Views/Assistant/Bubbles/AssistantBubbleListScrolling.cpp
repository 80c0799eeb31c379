// The part of AssistantBubbleList that places the bubbles and scrolls.

#include "AssistantBubbleList.h"

#include <QGuiApplication>
#include <QKeyEvent>
#include <QLabel>
#include <QPainter>
#include <QScrollBar>
#include <QTextEdit>
#include <QVariantAnimation>

#include <algorithm>

bool AssistantBubbleList::isAtEnd() const {
    return verticalScrollBar()->value() >= verticalScrollBar()->maximum();
}

void AssistantBubbleList::layOut() {
    m_greeting->setGeometry(viewport()->rect());
    if (m_isLayingOut || !isVisible() || m_rows.empty() || columnWidth() <= 0) {
        if (m_rows.empty())
            verticalScrollBar()->setRange(0, 0);
        return;
    }
    m_isLayingOut = true;
    const int width = columnWidth();
    const int window = viewport()->height();
    const bool isScrolling = m_scroll->state() == QAbstractAnimation::Running;
    const BubbleColumn::Anchor anchor = m_column.anchorAt(verticalScrollBar()->value());
    // What lies just outside is made ready, except in the middle of a movement.
    const int ahead = isScrolling ? 0 : window / 2;
    int position = 0;
    bool moved = true;
    while (moved) {
        const int last = std::max(0, m_column.contentHeight() - window);
        position = m_column.placeOf(anchor);
        if (isScrolling) {
            const int target = std::clamp(m_column.positionShowing(m_scrollRow, window), 0, last);
            // A long way is cut short: what flies by can't be read anyway.
            const int start = std::clamp(m_scrollStart, target - 2 * window, target + 2 * window);
            position = start + static_cast<int>((target - start) * m_scroll->currentValue().toDouble());
        } else if (m_staysAtEnd) {
            position = last;
        }
        position = std::clamp(position, 0, last);
        const BubbleColumn::Range near = m_column.rowsBetween(position - ahead, position + window + ahead);
        moved = false;
        for (std::size_t i = near.first; i < near.end; ++i)
            moved = measure(i) || moved;
    }
    setPosition(position);
    place();
    m_isLayingOut = false;
    // The scroll bar came or went.
    if (columnWidth() != width)
        layOut();
}

void AssistantBubbleList::setPosition(int position) {
    QScrollBar* bar = verticalScrollBar();
    bar->setPageStep(viewport()->height());
    bar->setRange(0, std::max(0, m_column.contentHeight() - viewport()->height()));
    bar->setValue(position);
}

void AssistantBubbleList::place() {
    const int width = columnWidth();
    for (std::size_t i = 0; i < m_rows.size(); ++i) {
        QWidget* widget = m_rows[i].widget;
        if (!widget)
            continue;
        const QPoint corner(BubbleColumn::margin, m_column.top(i) - verticalScrollBar()->value());
        if (!m_column.isMeasured(i, width))
            widget->move(corner);
        else
            widget->setGeometry({corner, QSize(widget->sizePolicy().horizontalPolicy() == QSizePolicy::Fixed
                                                   ? widget->sizeHint().width()
                                                   : width,
                                               m_column.height(i))});
    }
}

// Scrolling

void AssistantBubbleList::scrollTo(std::size_t row) {
    m_scroll->stop();
    if (!isVisible()) {
        m_staysAtEnd = true;
        return;
    }
    m_scrollRow = row;
    m_scrollStart = verticalScrollBar()->value();
    m_scroll->start();
    layOut();
}

void AssistantBubbleList::scrollContentsBy(int, int) {
    if (!m_isLayingOut)
        userScrolled();
}

void AssistantBubbleList::userScrolled() {
    m_scroll->stop();
    m_staysAtEnd = false;
    layOut();
    m_staysAtEnd = isAtEnd();
}

void AssistantBubbleList::revealFocus(const QWidget* focus) {
    // A click is made where the user looks already.
    if (!focus || !viewport()->isAncestorOf(focus) || QGuiApplication::mouseButtons() != Qt::NoButton)
        return;
    reveal({focus->mapTo(viewport(), QPoint()), focus->size()});
}

/// Scrolls no further than needed; what is too high is shown from its beginning.
void AssistantBubbleList::reveal(const QRect& area) {
    const int above = area.top() - BubbleColumn::margin;
    const int below = area.bottom() + 1 + BubbleColumn::margin - viewport()->height();
    if (above < 0 || area.height() + 2 * BubbleColumn::margin > viewport()->height())
        verticalScrollBar()->setValue(verticalScrollBar()->value() + above);
    else if (below > 0)
        verticalScrollBar()->setValue(verticalScrollBar()->value() + below);
}

/// A selection that grows out of sight takes the list along.
void AssistantBubbleList::followCursors(const QWidget& bubble) {
    for (QTextEdit* text : bubble.findChildren<QTextEdit*>())
        connect(text, &QTextEdit::cursorPositionChanged, this, [this, text] {
            if (text->hasFocus())
                reveal({text->viewport()->mapTo(viewport(), text->cursorRect().topLeft()), text->cursorRect().size()});
        });
}

// Events

bool AssistantBubbleList::viewportEvent(QEvent* event) {
    switch (event->type()) {
    case QEvent::LayoutRequest:
        // A bubble wants another height.
        m_column.forgetMeasures();
        layOut();
        return true;
    case QEvent::Resize:
        layOut();
        return true;
    case QEvent::Paint:
        if (hasFocus()) {
            QPainter painter(viewport());
            painter.setPen(QPen(palette().color(QPalette::Highlight), 2));
            painter.drawRect(viewport()->rect().adjusted(1, 1, -1, -1));
        }
        return true;
    default:
        return QAbstractScrollArea::viewportEvent(event);
    }
}

void AssistantBubbleList::keyPressEvent(QKeyEvent* event) {
    if (event->key() == Qt::Key_Home)
        verticalScrollBar()->triggerAction(QScrollBar::SliderToMinimum);
    else if (event->key() == Qt::Key_End)
        verticalScrollBar()->triggerAction(QScrollBar::SliderToMaximum);
    else
        QAbstractScrollArea::keyPressEvent(event);
}

void AssistantBubbleList::showEvent(QShowEvent* event) {
    QAbstractScrollArea::showEvent(event);
    layOut();
}

void AssistantBubbleList::changeEvent(QEvent* event) {
    QAbstractScrollArea::changeEvent(event);
    if (event->type() == QEvent::FontChange) {
        m_column.forgetMeasures();
        layOut();
    }
}
