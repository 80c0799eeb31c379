// The part of AnnotatingPDFView that follows the pointer.

#include "AnnotatingPDFView.h"
#include "Eraser.h"
#include "EraserCursorOverlay.h"
#include "NoteAnnotation.h"
#include "NoteDrag.h"
#include "NoteEditor.h"
#include "PDFPage.h"
#include "PageTextEditor.h"
#include "ShapeGesture.h"
#include "SignaturePlacement.h"
#include "TextBoxEditor.h"
#include "ToolCursor.h"
#include "ToolState.h"
#include "UndoManager.h"

#include <QMouseEvent>
#include <QTabletEvent>

// Buttons

void AnnotatingPDFView::mousePressEvent(QMouseEvent* event) {
    press(event, false);
}

/// With a tool the second of two quick presses is a press like any other.
void AnnotatingPDFView::mouseDoubleClickEvent(QMouseEvent* event) {
    press(event, true);
}

void AnnotatingPDFView::press(QMouseEvent* event, bool isDoubleClick) {
    const auto leaveToBase = [&] {
        isDoubleClick ? PDFView::mouseDoubleClickEvent(event) : PDFView::mousePressEvent(event);
    };
    if (event->button() != Qt::LeftButton) {
        leaveToBase();
        return;
    }
    commitEditors();
    closeRemark();
    finishGestures();
    if (!m_toolState) {
        leaveToBase();
        return;
    }
    if (m_docUndoManager)
        m_docUndoManager->endUndoGrouping(); // two quick presses are two steps, even when they come in one turn
    const AnnotationTool tool = m_toolState->tool();
    if (m_toolState->isTextEditingModeEnabled()) {
        m_pageTextEditor->begin(event->position());
    } else if (tool != AnnotationTool::select) {
        pressTool(tool, event->position());
    } else if (const std::shared_ptr<NoteAnnotation> note = noteAnnotation(event->position())) {
        if (isDoubleClick)
            m_noteEditor->start(note, note->page(), false);
        else
            m_noteDrag->begin(note, event->position());
    } else {
        leaveToBase();
    }
}

void AnnotatingPDFView::pressTool(AnnotationTool tool, QPointF viewPoint) {
    switch (tool) {
    case AnnotationTool::textBox:
        if (const std::shared_ptr<PDFPage> page = pageAt(viewPoint, true))
            m_textBoxEditor->start(viewPoint, page);
        break;
    case AnnotationTool::note:
        addNote(viewPoint);
        break;
    case AnnotationTool::eraser:
        m_eraser->eraseAnnotation(viewPoint);
        break;
    case AnnotationTool::signature:
        m_signature->begin(viewPoint);
        break;
    default:
        m_shape->begin(tool, viewPoint);
        break;
    }
}

void AnnotatingPDFView::mouseMoveEvent(QMouseEvent* event) {
    const QPointF point = event->position();
    m_penErases = false;
    if (!m_toolState) {
        PDFView::mouseMoveEvent(event);
        return;
    }
    const AnnotationTool tool = m_toolState->tool();
    if (!event->buttons().testFlag(Qt::LeftButton)) {
        finishGestures(); // a menu or a dialog that came up in between has got the release
        PDFView::mouseMoveEvent(event);
        if (tool != AnnotationTool::select)
            updateCursor(point); // also in the middle of scrolling
        return;
    }
    if (tool == AnnotationTool::select) {
        m_noteDrag->isRunning() ? m_noteDrag->moveTo(point) : PDFView::mouseMoveEvent(event);
        return;
    }
    if (tool == AnnotationTool::eraser) {
        m_lastMouseViewPoint = point;
        updateEraserVisual(point);
        m_eraser->eraseAnnotation(point);
    } else if (tool == AnnotationTool::signature) {
        m_signature->moveTo(point);
    } else {
        m_shape->moveTo(point);
    }
}

void AnnotatingPDFView::mouseReleaseEvent(QMouseEvent* event) {
    const bool isOfTool = m_toolState && m_toolState->tool() != AnnotationTool::select;
    if (event->button() != Qt::LeftButton || !(isOfTool || m_noteDrag->isRunning())) {
        PDFView::mouseReleaseEvent(event);
        return;
    }
    finishGestures();
    updateCursor(event->position());
}

std::shared_ptr<NoteAnnotation> AnnotatingPDFView::noteAnnotation(QPointF viewPoint) const {
    const std::shared_ptr<PDFPage> page = pageAt(viewPoint, false);
    return page ? std::dynamic_pointer_cast<NoteAnnotation>(page->annotation(convertToPage(viewPoint, *page)))
                : nullptr;
}

// Pens

bool AnnotatingPDFView::usePenEraser(QTabletEvent* event) {
    if (event->pointerType() != QPointingDevice::PointerType::Eraser || !m_toolState)
        return false;
    m_penErases = true;
    m_lastMouseViewPoint = event->position();
    updateEraserVisual(event->position());
    if (event->type() == QEvent::TabletPress && event->button() == Qt::LeftButton) {
        commitEditors();
        finishGestures();
    }
    if (event->type() != QEvent::TabletRelease && event->buttons().testFlag(Qt::LeftButton))
        m_eraser->eraseAnnotation(event->position());
    else
        m_eraser->finish();
    event->accept();
    return true;
}

bool AnnotatingPDFView::viewportEvent(QEvent* event) {
    switch (event->type()) {
    case QEvent::TabletPress:
    case QEvent::TabletMove:
    case QEvent::TabletRelease:
        // The tip of a pen arrives as the mouse does, as soon as this event is left alone.
        if (usePenEraser(static_cast<QTabletEvent*>(event)))
            return true;
        event->ignore();
        return false;
    case QEvent::Enter:
        updateCursor(static_cast<QEnterEvent*>(event)->position());
        break;
    case QEvent::Leave:
        m_lastMouseViewPoint.reset();
        m_penErases = false;
        updateEraserVisual(std::nullopt);
        m_toolCursor.reset();
        viewport()->setCursor(Qt::ArrowCursor);
        break;
    default:
        break;
    }
    return PDFView::viewportEvent(event);
}

bool AnnotatingPDFView::fingerDraws() const {
    return m_toolState && m_toolState->tool() != AnnotationTool::select;
}

// The shape of the pointer

void AnnotatingPDFView::updateCursor(QPointF viewPoint) {
    if (isPanning()) { // the hand that moves the pages is no tool
        m_toolCursor.reset();
        updateEraserVisual(std::nullopt);
        viewport()->setCursor(Qt::ClosedHandCursor);
        return;
    }
    if (!m_toolState || m_toolState->tool() == AnnotationTool::select) {
        m_toolCursor.reset();
        updateEraserVisual(std::nullopt);
        PDFView::updateCursor(viewPoint);
        return;
    }
    const AnnotationTool tool = m_toolState->tool();
    m_lastMouseViewPoint = viewPoint;
    updateEraserVisual(viewPoint);
    const std::pair wanted(tool, devicePixelRatioF());
    if (tool != AnnotationTool::eraser && m_toolCursor != wanted) {
        viewport()->setCursor(ToolCursor::cursor(tool, wanted.second));
        m_toolCursor = wanted;
    }
}

void AnnotatingPDFView::refreshToolCursor() {
    if (m_toolState && m_toolState->tool() == AnnotationTool::eraser)
        updateEraserVisual(m_lastMouseViewPoint);
    else
        updateEraserVisual(std::nullopt);
    if (viewport()->underMouse())
        updateCursor(viewport()->mapFromGlobal(QPointF(QCursor::pos())));
}

void AnnotatingPDFView::updateEraserVisual(const std::optional<QPointF>& viewPoint) {
    const bool erases = m_toolState && (m_penErases || m_toolState->tool() == AnnotationTool::eraser);
    const bool isShown = erases && viewPoint;
    if (isShown && !m_eraserCursorHidden)
        viewport()->setCursor(Qt::BlankCursor);
    else if (!isShown && m_eraserCursorHidden)
        viewport()->setCursor(Qt::ArrowCursor);
    if (isShown != m_eraserCursorHidden)
        m_toolCursor.reset();
    m_eraserCursorHidden = isShown;
    if (!isShown) {
        m_eraserOverlay->show(std::nullopt, m_eraserOverlay->diameter());
        return;
    }
    const std::shared_ptr<PDFPage> page = pageAt(*viewPoint, true); // whose units the size is in
    m_eraserOverlay->show(viewPoint, m_toolState->eraserSize() * scaleFactor() * (page ? page->userUnit() : 1));
}
