#include "AnnotationEditor.h"

#include "AnnotatingPDFView.h"
#include "InlineFreeTextEditor.h"

AnnotationEditor::AnnotationEditor(AnnotatingPDFView& view) : PlacedEditor(view), m_annotatingView(view) {}

InlineFreeTextEditor& AnnotationEditor::open(const std::shared_ptr<PDFPage>& page, const QString& objectName,
                                             const QString& accessibleName) {
    auto* const made = new InlineFreeTextEditor(m_annotatingView.viewport());
    PlacedEditor::open(made, page, objectName, accessibleName);
    connect(made, &QTextEdit::textChanged, this, &PlacedEditor::typed);
    return *made;
}

InlineFreeTextEditor* AnnotationEditor::editor() const {
    return static_cast<InlineFreeTextEditor*>(widget());
}
