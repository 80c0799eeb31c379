#pragma once

#include <QPointF>

#include <memory>

class AnnotatingPDFView;
class PDFAnnotation;
class PDFPage;
class UndoManager;

/// Takes annotations off the page where the pointer touches them, or cuts strokes apart. What counts is the bounds of
/// an annotation, and it may be one that was in the file already; what covers the whole page, such as a watermark, goes
/// where its letters are touched. Main thread only.
class Eraser {
public:
    /// `view` must outlive the eraser.
    explicit Eraser(AnnotatingPDFView& view);
    ~Eraser();
    Eraser(const Eraser&) = delete;
    Eraser& operator=(const Eraser&) = delete;

    /// Erases at one point, by the size and the mode of the tool state. What goes until `finish` is undone together.
    void eraseAnnotation(QPointF viewPoint);
    /// The pointer was released. Nothing can be undone between the first annotation that goes and this.
    void finish();

private:
    /// Page coordinates.
    struct Circle {
        QPointF center;
        double radius;
    };
    void splitInkAnnotation(const std::shared_ptr<PDFAnnotation>& annotation, const std::shared_ptr<PDFPage>& page,
                            const Circle& circle);
    /// Whether it is to be erased there: a stamp over the whole page only where it shows something.
    [[nodiscard]] static bool isTouched(const std::shared_ptr<PDFAnnotation>& annotation, const Circle& circle);
    void remove(const std::shared_ptr<PDFAnnotation>& annotation, const std::shared_ptr<PDFPage>& page);

    AnnotatingPDFView& m_view;
    std::weak_ptr<UndoManager> m_grouped; // has a group open for what is being erased
};
