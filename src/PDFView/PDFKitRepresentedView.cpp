#include "PDFKitRepresentedView.h"

#include "AnnotatingPDFView.h"
#include "PDFDocument.h"
#include "PDFPage.h"
#include "PDFViewCoordinator.h"
#include "Palette.h"

/// The page to begin with, unless it is the first, which a fresh viewer shows anyway.
static std::shared_ptr<PDFPage> rememberedPage(const PDFKitRepresentedView& values) {
    if (values.fileURL.isEmpty())
        return nullptr;
    const std::optional<int> index = values.coordinator->rememberedPageIndex(values.fileURL);
    return index && *index >= 1 ? values.pdfDocument->page(*index) : nullptr;
}

AnnotatingPDFView* PDFKitRepresentedView::makeView(QWidget* parent) const {
    auto* const view = new AnnotatingPDFView(parent);
    view->setToolState(toolState);
    view->setDocument(pdfDocument);
    view->setAutoScales(true);
    view->setDisplaysPageBreaks(true);
    view->setBackgroundColor(Palette::appTint(view->palette()));
    view->setDocUndoManager(undoManager);
    view->onAskAI = onAskAI;
    view->onTextExtracted = onTextExtracted;
    view->onRedactionDrawn = onRedactionDrawn;

    // Before the coordinator is attached: that writes the viewer's first page over the remembered one.
    const std::shared_ptr<PDFPage> page = rememberedPage(*this);
    coordinator->setFileURL(fileURL);
    coordinator->setPdfView(view);
    coordinator->observePageChanges();
    Q_EMIT coordinator->objectWillChange();

    const std::optional<double> scale = fileURL.isEmpty() ? std::nullopt : coordinator->rememberedScale(fileURL);
    if (page || scale) {
        // Later, since the viewer has no layout yet.
        QMetaObject::invokeMethod(
            view,
            [view, page, scale] {
                if (scale)
                    view->setScaleFactor(*scale);
                if (page)
                    view->goToPage(page);
            },
            Qt::QueuedConnection);
    }
    return view;
}
