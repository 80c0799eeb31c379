#include "SignaturePlacement.h"

#include "AnnotatingPDFView.h"
#include "AnnotationUndo.h"
#include "PDFDocument.h"
#include "PDFPage.h"
#include "SignatureAnnotation.h"
#include "SignatureStore.h"
#include "ToolState.h"

#include <algorithm>
#include <cmath>

// Points, on the page as it is seen.
static constexpr double defaultWidth = 160;
static constexpr double leastSignatureWidth = 24;

SignaturePlacement::SignaturePlacement(AnnotatingPDFView& view) : m_view(view) {}

SignaturePlacement::~SignaturePlacement() = default;

void SignaturePlacement::begin(QPointF viewPoint) {
    clear();
    const std::optional<QImage> image = m_view.toolState()->signatureStore()->activeImage();
    m_dragPage = image ? m_view.pageAt(viewPoint, true) : nullptr;
    if (!m_dragPage)
        return;
    m_start = seenPoint(viewPoint);
    m_ratio = double(image->height()) / std::max(image->width(), 1);
    m_currentAnnotation = std::make_shared<SignatureAnnotation>(*image, boundsFrom(m_start.x(), defaultWidth));
}

QPointF SignaturePlacement::seenPoint(QPointF viewPoint) const {
    return m_dragPage->displayTransform(m_view.displayBox()).map(m_view.convertToPage(viewPoint, *m_dragPage));
}

QRectF SignaturePlacement::boundsFrom(double left, double width) const {
    return m_dragPage->displayTransform(m_view.displayBox())
        .inverted()
        .mapRect(QRectF(left, m_start.y(), width, m_ratio * width));
}

void SignaturePlacement::moveTo(QPointF viewPoint) {
    if (!isRunning())
        return;
    if (!m_dragPage->document()) { // the page was deleted under the pointer
        clear();
        return;
    }
    m_dragPage->addAnnotation(m_currentAnnotation); // no more than once
    const double along = seenPoint(viewPoint).x() - m_start.x();
    const double width = std::max(std::abs(along), leastSignatureWidth);
    // Dragged to the left, the right edge stays where the press was.
    m_currentAnnotation->setBounds(boundsFrom(along < 0 ? m_start.x() - width : m_start.x(), width));
}

void SignaturePlacement::finish() {
    if (isRunning() && m_dragPage->document()) {
        m_dragPage->addAnnotation(m_currentAnnotation);
        AnnotationUndo::registerAdding(m_view.docUndoManager().get(), m_dragPage, m_currentAnnotation);
    }
    clear();
}

void SignaturePlacement::cancel() {
    if (isRunning())
        m_dragPage->removeAnnotation(m_currentAnnotation);
    clear();
}

void SignaturePlacement::clear() {
    m_dragPage.reset();
    m_currentAnnotation.reset();
}
