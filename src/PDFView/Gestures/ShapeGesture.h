#pragma once

#include "AnnotationTool.h"

#include <QPointF>

#include <memory>
#include <vector>

class AnnotatingPDFView;
class PDFAnnotation;
class PDFPage;

/// A drag that draws a stroke, a shape, a line, a redaction marker or a form field. The annotation joins the page with
/// the first movement, so a mere click leaves nothing; its undo is registered when the drag is finished. View points
/// are those of `PDFView`. Main thread only.
class ShapeGesture {
public:
    /// `view` must outlive the gesture and have a tool state.
    explicit ShapeGesture(AnnotatingPDFView& view);
    ~ShapeGesture();
    ShapeGesture(const ShapeGesture&) = delete;
    ShapeGesture& operator=(const ShapeGesture&) = delete;

    [[nodiscard]] bool isRunning() const { return m_currentAnnotation != nullptr; }
    /// On the page at the point, or the nearest. Without a page nothing begins.
    void begin(AnnotationTool tool, QPointF viewPoint);
    void moveTo(QPointF viewPoint);
    void finish();
    /// Takes what was drawn so far from the page. Nothing of it can be undone or redone.
    void cancel();

private:
    [[nodiscard]] std::shared_ptr<PDFAnnotation> makeAnnotation(AnnotationTool tool) const;
    void rebuildInkAnnotation();
    void clear();

    AnnotatingPDFView& m_view;
    AnnotationTool m_tool = AnnotationTool::ink;
    std::shared_ptr<PDFPage> m_dragPage;
    QPointF m_startPagePoint;
    std::shared_ptr<PDFAnnotation> m_currentAnnotation;
    std::vector<QPointF> m_inkPoints; // as they came, page coordinates
};
