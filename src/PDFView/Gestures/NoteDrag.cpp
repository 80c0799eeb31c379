#include "NoteDrag.h"

#include "AnnotatingPDFView.h"
#include "AnnotationUndo.h"
#include "NoteAnnotation.h"
#include "PDFDocument.h"
#include "PDFPage.h"

#include <utility>

NoteDrag::NoteDrag(AnnotatingPDFView& view) : m_view(view) {}

NoteDrag::~NoteDrag() = default;

void NoteDrag::begin(const std::shared_ptr<NoteAnnotation>& annotation, QPointF viewPoint) {
    m_annotation = annotation;
    m_page = annotation->page();
    m_startBounds = annotation->bounds();
    m_grabOffset = m_view.convertToPage(viewPoint, *m_page) - m_startBounds.topLeft();
}

void NoteDrag::moveTo(QPointF viewPoint) {
    if (!isRunning() || !m_page->document())
        return;
    const QPointF corner = m_view.convertToPage(viewPoint, *m_page) - m_grabOffset;
    m_annotation->setBounds(QRectF(corner, m_startBounds.size()));
}

void NoteDrag::finish() {
    const auto annotation = std::exchange(m_annotation, nullptr);
    if (annotation && annotation->bounds() != m_startBounds)
        AnnotationUndo::registerMoving(m_view.docUndoManager().get(), annotation, m_startBounds);
    m_page.reset();
}

void NoteDrag::cancel() {
    if (const auto annotation = std::exchange(m_annotation, nullptr))
        annotation->setBounds(m_startBounds);
    m_page.reset();
}
