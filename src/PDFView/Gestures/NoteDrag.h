#pragma once

#include <QPointF>
#include <QRectF>

#include <memory>

class AnnotatingPDFView;
class NoteAnnotation;
class PDFPage;

/// A drag that moves a note over its page. Main thread only.
class NoteDrag {
public:
    /// `view` must outlive the drag.
    explicit NoteDrag(AnnotatingPDFView& view);
    ~NoteDrag();
    NoteDrag(const NoteDrag&) = delete;
    NoteDrag& operator=(const NoteDrag&) = delete;

    [[nodiscard]] bool isRunning() const { return m_annotation != nullptr; }
    void begin(const std::shared_ptr<NoteAnnotation>& annotation, QPointF viewPoint);
    void moveTo(QPointF viewPoint);
    /// Registers the undo when the note was moved.
    void finish();
    /// The note goes back to where it was.
    void cancel();

private:
    AnnotatingPDFView& m_view;
    std::shared_ptr<NoteAnnotation> m_annotation;
    std::shared_ptr<PDFPage> m_page;
    QRectF m_startBounds;
    QPointF m_grabOffset; // from the lower left corner of the note to the pointer
};
