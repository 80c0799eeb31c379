#pragma once

#include "AnnotationEditor.h"

#include <QFont>
#include <QPointF>

#include <vector>

class FreeTextAnnotation;

/// Writes new text on a page: a box whose upper left corner is where it was started, always as wide, and as high as its
/// text. It has the tool state's font at the size that it has on the page at 100%, whatever the zoom; on the page it
/// becomes a `FreeTextAnnotation` with the upper left corner and the width that it had on the screen, and with its
/// height or as much more as the words need.
class TextBoxEditor : public AnnotationEditor {
    Q_OBJECT

public:
    explicit TextBoxEditor(AnnotatingPDFView& view);
    ~TextBoxEditor() override;

    /// Opens an empty box. Needs a tool state; without one nothing happens.
    void start(QPointF viewPoint, const std::shared_ptr<PDFPage>& page);
    /// Adds the text to the page, undoably; a box with nothing but white space leaves nothing.
    void commit() override;

private:
    void layOut() override;
    void addOpenTo(PDFDraft& draft) const override;
    /// What the box becomes with that text. The box is open.
    [[nodiscard]] std::shared_ptr<FreeTextAnnotation> annotation(const QString& text) const;
    void close() override;
    void resize();
    void layOutHandles();
    void deleteHandles();

    QFont m_font;                             // size in points of the page
    QPointF m_corner;                         // the upper left on the screen, in page coordinates
    double m_height = 0;                      // device-independent pixels
    std::vector<QPointer<QWidget>> m_handles; // children of the viewport
};
