#include "ThumbnailCell.h"
#include "ThumbnailList.h"
#include "ThumbnailModel.h"

#include <QApplication>
#include <QContextMenuEvent>
#include <QKeyEvent>

#include <algorithm>
#include <utility>

// Keyboard

/// Keys that the window has commands for, and that mean the pages while the list has the keyboard.
static bool isOwnKey(const QKeyEvent& event) {
    const Qt::KeyboardModifiers modifiers = event.modifiers() & ~Qt::KeypadModifier;
    if (modifiers == Qt::AltModifier)
        return event.key() == Qt::Key_Up || event.key() == Qt::Key_Down;
    if (modifiers == Qt::ControlModifier && event.key() == Qt::Key_A)
        return true;
    if (modifiers & ~(Qt::ControlModifier | Qt::ShiftModifier))
        return false;
    switch (event.key()) {
    case Qt::Key_Up:
    case Qt::Key_Down:
    case Qt::Key_Home:
    case Qt::Key_End:
    case Qt::Key_PageUp:
    case Qt::Key_PageDown:
        return true;
    default:
        return false;
    }
}

bool ThumbnailList::event(QEvent* event) {
    if (event->type() == QEvent::ShortcutOverride && isOwnKey(static_cast<QKeyEvent&>(*event))) {
        event->accept();
        return true;
    }
    return QListView::event(event);
}

int ThumbnailList::rowAfterKey(int key, int row) const {
    const int last = m_model->rowCount() - 1;
    const int page = std::max(1, viewport()->height() / rowHeight());
    switch (key) {
    case Qt::Key_Up:
        return std::max(0, row - 1);
    case Qt::Key_Down:
        return std::min(last, row + 1);
    case Qt::Key_PageUp:
        return std::max(0, row - page);
    case Qt::Key_PageDown:
        return std::min(last, row + page);
    case Qt::Key_Home:
        return 0;
    case Qt::Key_End:
        return last;
    default:
        return -1;
    }
}

void ThumbnailList::goTo(int row, Qt::KeyboardModifiers modifiers) {
    const int anchor = m_anchorRow;
    setFocusedRow(row);
    if (modifiers & Qt::ShiftModifier) {
        const QItemSelection range(m_model->index(std::min(anchor, row)), m_model->index(std::max(anchor, row)));
        selectionModel()->select(range, modifiers & Qt::ControlModifier ? QItemSelectionModel::Select
                                                                        : QItemSelectionModel::ClearAndSelect);
        m_anchorRow = anchor;
    } else if (!(modifiers & Qt::ControlModifier)) {
        clearSelection();
    }
    scrollTo(m_model->index(row), QAbstractItemView::EnsureVisible);
}

void ThumbnailList::toggle(int row) {
    selectionModel()->select(m_model->index(row), QItemSelectionModel::Toggle);
    m_anchorRow = row;
}

void ThumbnailList::keyPressEvent(QKeyEvent* event) {
    const auto row = focusedRow();
    if (!row) {
        event->ignore();
        return;
    }
    const Qt::KeyboardModifiers modifiers = event->modifiers() & ~Qt::KeypadModifier;
    if (const int next = isOwnKey(*event) ? rowAfterKey(event->key(), *row) : -1; next >= 0) {
        if (modifiers == Qt::AltModifier)
            Q_EMIT moveRequested(rowsMeantBy(*row), event->key() == Qt::Key_Up ? -1 : 1);
        else
            goTo(next, modifiers);
    } else if (event->key() == Qt::Key_A && modifiers == Qt::ControlModifier) {
        selectAll();
    } else if (event->key() == Qt::Key_Space && !(modifiers & ~Qt::ControlModifier)) {
        toggle(*row);
    } else if (event->key() == Qt::Key_Escape && selectionModel()->hasSelection()) {
        clearSelection();
    } else if ((event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter) && !modifiers) {
        Q_EMIT goRequested(*row);
    } else if (event->key() == Qt::Key_Delete && !modifiers) {
        Q_EMIT deletionRequested(selectionModel()->hasSelection() ? selectedRows() : std::vector{*row});
    } else {
        event->ignore(); // no search by typing: numbers alone name these rows
    }
}

// Pointer

void ThumbnailList::mousePressEvent(QMouseEvent* event) {
    const QModelIndex index = indexAt(event->position().toPoint());
    m_pressedRow.reset();
    if (event->button() != Qt::LeftButton)
        return;
    if (index.isValid()) {
        m_pressedRow = index.row();
        m_pressPosition = event->position().toPoint();
    } else {
        clearSelection();
    }
}

void ThumbnailList::mouseMoveEvent(QMouseEvent* event) {
    if (!(event->buttons() & Qt::LeftButton))
        QListView::mouseMoveEvent(event); // what the pointer is over
    else if (m_pressedRow &&
             (event->position().toPoint() - m_pressPosition).manhattanLength() >= QApplication::startDragDistance())
        startDragging(*std::exchange(m_pressedRow, {}));
}

void ThumbnailList::mouseReleaseEvent(QMouseEvent* event) {
    const auto row = std::exchange(m_pressedRow, {});
    if (event->button() == Qt::LeftButton && row && *row < m_model->rowCount())
        Q_EMIT tapped(*row, event->modifiers());
}

/// The second click of two is one like any other.
void ThumbnailList::mouseDoubleClickEvent(QMouseEvent* event) {
    mousePressEvent(event);
}

void ThumbnailList::contextMenuEvent(QContextMenuEvent* event) {
    const bool isKey = event->reason() == QContextMenuEvent::Keyboard;
    const QModelIndex index = isKey ? currentIndex() : indexAt(event->pos());
    if (!index.isValid())
        return;
    Q_EMIT menuRequested(index.row(), isKey ? viewport()->mapToGlobal(visualRect(index).center()) : event->globalPos());
}
