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

// Page units.
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
    m_startPagePoint = m_view.convertToPage(viewPoint, *m_dragPage);
    m_ratio = double(image->height()) / std::max(image->width(), 1);
    const double height = m_ratio * defaultWidth;
    m_currentAnnotation = std::make_shared<SignatureAnnotation>(
        *image, QRectF(m_startPagePoint.x(), m_startPagePoint.y() - height, defaultWidth, height));
}

void SignaturePlacement::moveTo(QPointF viewPoint) {
    if (!isRunning())
        return;
    if (!m_dragPage->document()) { // the page was deleted under the pointer
        clear();
        return;
    }
    m_dragPage->addAnnotation(m_currentAnnotation); // no more than once
    const QPointF point = m_view.convertToPage(viewPoint, *m_dragPage);
    const double width = std::max(std::abs(point.x() - m_startPagePoint.x()), leastSignatureWidth);
    // Dragged to the left, the right edge stays where the press was.
    const double x = point.x() < m_startPagePoint.x() ? m_startPagePoint.x() - width : m_startPagePoint.x();
    const double height = m_ratio * width;
    m_currentAnnotation->setBounds(QRectF(x, m_startPagePoint.y() - height, width, height));
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
