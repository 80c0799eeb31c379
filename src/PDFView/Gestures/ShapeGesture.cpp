#include "ShapeGesture.h"

#include "AnnotatingPDFView.h"
#include "AnnotationUndo.h"
#include "FormFieldPlacer.h"
#include "InkPath.h"
#include "LineAnnotation.h"
#include "OvalAnnotation.h"
#include "PDFDocument.h"
#include "PDFPage.h"
#include "RectangleAnnotation.h"
#include "RedactionMarkerAnnotation.h"
#include "ToolState.h"
#include "UndoManager.h"

#include <algorithm>
#include <cmath>

ShapeGesture::ShapeGesture(AnnotatingPDFView& view) : m_view(view) {}

ShapeGesture::~ShapeGesture() = default;

std::shared_ptr<PDFAnnotation> ShapeGesture::makeAnnotation(AnnotationTool tool) const {
    const QRectF page = m_dragPage->bounds(m_view.displayBox());
    const QRectF spot(m_startPagePoint, QSizeF(0, 0));
    switch (tool) {
    case AnnotationTool::rectangle:
        return std::make_shared<RectangleAnnotation>(spot);
    case AnnotationTool::oval:
        return std::make_shared<OvalAnnotation>(spot);
    case AnnotationTool::line: {
        auto line = std::make_shared<LineAnnotation>(page);
        line->setStartPoint(m_startPagePoint);
        line->setEndPoint(m_startPagePoint);
        line->setEndLineStyle(m_view.toolState()->lineEndStyle());
        return line;
    }
    case AnnotationTool::redact: {
        auto marker = std::make_shared<RedactionMarkerAnnotation>(spot);
        marker->setContents(RedactionMarkerAnnotation::marker);
        return marker;
    }
    case AnnotationTool::form: {
        auto field = FormFieldPlacer::makeAnnotation(m_view.toolState()->formFieldMode(), spot);
        field->setWidgetRotation(m_dragPage->rotation());
        return field;
    }
    default:
        return std::make_shared<PDFAnnotation>(page, PDFAnnotationSubtype::ink);
    }
}

void ShapeGesture::begin(AnnotationTool tool, QPointF viewPoint) {
    clear();
    m_dragPage = m_view.pageAt(viewPoint, true);
    if (!m_dragPage)
        return;
    m_tool = tool;
    m_startPagePoint = m_view.convertToPage(viewPoint, *m_dragPage);
    m_currentAnnotation = makeAnnotation(tool);
    m_currentAnnotation->setColor(m_view.toolState()->color());
    m_currentAnnotation->setBorder(PDFBorder{m_view.toolState()->lineWidth()});
    if (tool == AnnotationTool::ink)
        m_inkPoints = {m_startPagePoint};
}

void ShapeGesture::moveTo(QPointF viewPoint) {
    if (!isRunning())
        return;
    if (!m_dragPage->document()) { // the page was deleted under the pointer
        clear();
        return;
    }
    const QPointF point = m_view.convertToPage(viewPoint, *m_dragPage);
    if (m_tool == AnnotationTool::ink) {
        m_inkPoints.push_back(point);
        rebuildInkAnnotation();
    } else if (m_tool == AnnotationTool::line) {
        m_currentAnnotation->setEndPoint(point);
    } else {
        m_currentAnnotation->setBounds(
            QRectF(QPointF(std::min(m_startPagePoint.x(), point.x()), std::min(m_startPagePoint.y(), point.y())),
                   QSizeF(std::abs(m_startPagePoint.x() - point.x()), std::abs(m_startPagePoint.y() - point.y()))));
    }
    m_dragPage->addAnnotation(m_currentAnnotation); // no more than once
}

/// The whole stroke is smoothed anew from its raw points; what looks different is its end alone.
void ShapeGesture::rebuildInkAnnotation() {
    if (m_inkPoints.size() < 2)
        return;
    const double width = m_currentAnnotation->border()->lineWidth;
    const QRectF bounds = InkPath::boundsOf(m_inkPoints, width);
    constexpr std::size_t changedPoints = 4;
    const std::size_t first = m_inkPoints.size() - std::min(m_inkPoints.size(), changedPoints);
    const QRectF end = InkPath::boundsOf({m_inkPoints.begin() + std::ptrdiff_t(first), m_inkPoints.end()}, width);
    m_currentAnnotation->setPaths(bounds, {InkPath::relativePath(m_inkPoints, bounds)}, end);
}

void ShapeGesture::finish() {
    if (isRunning() && m_currentAnnotation->page()) {
        if (const auto line = std::dynamic_pointer_cast<LineAnnotation>(m_currentAnnotation))
            line->fitBounds(); // with those of the whole page it would be in the way of all that lies below it
        AnnotationUndo::registerAdding(m_view.docUndoManager().get(), m_dragPage, m_currentAnnotation);
        if (m_tool == AnnotationTool::redact && m_view.onRedactionDrawn) {
            if (const auto undoManager = m_view.docUndoManager())
                undoManager->endUndoGrouping(); // what becomes of the marker is a step of its own
            m_view.onRedactionDrawn();
        }
    }
    clear();
}

void ShapeGesture::cancel() {
    if (isRunning())
        m_dragPage->removeAnnotation(m_currentAnnotation);
    clear();
}

void ShapeGesture::clear() {
    m_dragPage.reset();
    m_currentAnnotation.reset();
    m_inkPoints.clear();
}
