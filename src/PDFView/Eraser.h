#pragma once

#include <QPointF>

#include <memory>

class AnnotatingPDFView;
class PDFAnnotation;
class PDFPage;

/// Takes annotations off the page where the pointer touches them, or cuts strokes apart. What counts is the bounds of
/// an annotation, and it may be one that was in the file already. Main thread only.
class Eraser {
public:
    /// `view` must outlive the eraser.
    explicit Eraser(AnnotatingPDFView& view);

    /// Erases at one point, by the size and the mode of the tool state; each call's changes are undone together.
    void eraseAnnotation(QPointF viewPoint);

private:
    /// Page coordinates.
    struct Circle {
        QPointF center;
        double radius;
    };
    void splitInkAnnotation(const std::shared_ptr<PDFAnnotation>& annotation, const std::shared_ptr<PDFPage>& page,
                            const Circle& circle);
    void remove(const std::shared_ptr<PDFAnnotation>& annotation, const std::shared_ptr<PDFPage>& page);

    AnnotatingPDFView& m_view;
};
