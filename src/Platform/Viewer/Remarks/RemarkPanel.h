#pragma once

#include "PlacedEditor.h"
#include "RemarkThreads.h"

#include <QRectF>
#include <QSize>

#include <memory>
#include <optional>
#include <vector>

class PDFAnnotation;
class QTextEdit;

/// A small panel beside an annotation with what it and the answers to it say, to be read, selected and copied. Escape,
/// Return and a click elsewhere close it. Main thread only.
class RemarkPanel : public PlacedEditor {
    Q_OBJECT

public:
    explicit RemarkPanel(PageSurface& view);
    ~RemarkPanel() override;

    /// Opens beside `anchor` (view points) and takes the keyboard. The annotation is on a page of the viewer. An answer
    /// stands below what it answers.
    void open(const std::shared_ptr<PDFAnnotation>& annotation, const QRectF& anchor);

    /// Closes it.
    void commit() override { close(); }
    void cancel() override { close(); }

private:
    void close() override;
    void addOpenTo(PDFDraft&) const override {}
    void layOut() override;
    [[nodiscard]] bool isSubjectThere() const override;
    bool eventFilter(QObject* watched, QEvent* event) override;
    [[nodiscard]] QTextEdit* text() const;
    [[nodiscard]] int heightFor(int viewWidth);

    std::shared_ptr<PDFAnnotation> m_annotation;
    std::vector<Remark> m_shown;
    QRectF m_anchor;                 // page coordinates
    std::optional<QSize> m_measured; // of what is shown, set in that width
};
