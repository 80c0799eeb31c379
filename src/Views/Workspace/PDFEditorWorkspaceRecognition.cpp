#include "AnnotatingPDFView.h"
#include "ErrorSentence.h"
#include "OCRTextLayerApplier.h"
#include "PDFEditorDocument.h"
#include "PDFEditorWorkspaceView.h"
#include "PDFViewCoordinator.h"
#include "RecognitionProgress.h"

#include <QClipboard>
#include <QGuiApplication>

#include <optional>

/// The window may be closed before the text is there.
QCoro::Task<> PDFEditorWorkspaceView::ocrPage(QPointer<PDFEditorWorkspaceView> self, int index,
                                              QPointer<RecognitionProgress> progress) {
    const std::shared_ptr<PDFEditorDocument> document = self->m_document;
    std::optional<QString> text;
    QString failure = QStringLiteral("No text could be recognized on this page.");
    try {
        text = co_await OCRTextLayerApplier::applyToCurrentPage(index, *document, document->undoManager().get(),
                                                                progress->stop());
    } catch (const OCRTextLayerApplier::DataMissing& error) {
        failure = QString::fromUtf8(error.what());
    } catch (...) {
        failure = sentenceOfCurrentError("recognizing text");
    }
    if (!RecognitionProgress::end(progress) || !self)
        co_return;
    self->m_pdfView->layoutDocumentView();
    const bool isFound = text && !text->isEmpty();
    if (isFound)
        QGuiApplication::clipboard()->setText(*text);
    self->handleExtractedText(isFound ? *text : failure);
}

void PDFEditorWorkspaceView::ocrCurrentPageTapped() {
    const std::optional<int> index = m_coordinator->currentPageIndex();
    if (!index || m_recognition)
        return;
    m_document->commitEditing();
    m_recognition = new RecognitionProgress(this);
    ocrPage(this, *index, m_recognition);
}
