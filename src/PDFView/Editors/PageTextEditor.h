#pragma once

#include "AnnotationEditor.h"

#include <QColor>
#include <QFont>

class FreeTextAnnotation;
class TextCoverAnnotation;
class QRectF;

/// Retypes a line of the page's own text. The page's content stays: a `TextCoverAnnotation` marks the place and a
/// `FreeTextAnnotation` over it shows the new text, in the line's font as far as that can be told and in black or white
/// as the page's background asks for. The two come and go as one undo step. What is longer than the line was gets more
/// room than that, to the right and below, here and on the page.
class PageTextEditor : public AnnotationEditor {
    Q_OBJECT

public:
    explicit PageTextEditor(AnnotatingPDFView& view);
    ~PageTextEditor() override;

    /// Opens the line at a view point with all its text selected, as large as the page is shown. Does nothing where
    /// there is no text.
    void begin(QPointF viewPoint);
    /// Puts the text over the line, also when it is as it was. Without any (white space aside) the page is left as
    /// before.
    void commit() override;
    /// Leaves the page as it was before.
    void cancel() override;

    /// For a line of that height, both in points, whose font can't be told.
    [[nodiscard]] static double fallbackFontSize(double lineHeight);

private:
    void start(const QRectF& lineBounds, const QString& lineText, const std::shared_ptr<PDFPage>& page);
    void layOut() override;
    void addOpenTo(PDFDraft& draft) const override;
    /// The text over the line. The editor is open.
    [[nodiscard]] std::shared_ptr<FreeTextAnnotation> replacement(const QString& text) const;
    [[nodiscard]] QRectF boundsFor(const QString& text) const;
    void close() override;
    [[nodiscard]] bool isSubjectThere() const override;
    void abandon() override;

    /// On the page from the start, so that it lies under all that is added meanwhile. It has an undo only from the
    /// commit on.
    std::shared_ptr<TextCoverAnnotation> m_cover;
    QFont m_pageFont; // size in points of the page
    QColor m_foreground;
};
