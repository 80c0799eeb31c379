#pragma once

#include "PlacedEditor.h"

class AnnotatingPDFView;
class InlineFreeTextEditor;

/// An editor of text that becomes part of an annotation: an `InlineFreeTextEditor`, in which Shift+Return breaks the
/// line. Main thread only.
class AnnotationEditor : public PlacedEditor {
    Q_OBJECT

public:
    void cancel() override { close(); }

protected:
    explicit AnnotationEditor(AnnotatingPDFView& view);

    /// Makes the editor, not yet shown; none may be open.
    InlineFreeTextEditor& open(const std::shared_ptr<PDFPage>& page, const QString& objectName,
                               const QString& accessibleName);

    [[nodiscard]] AnnotatingPDFView& view() const { return m_annotatingView; }
    /// Null when none is open.
    [[nodiscard]] InlineFreeTextEditor* editor() const;

private:
    AnnotatingPDFView& m_annotatingView;
};
