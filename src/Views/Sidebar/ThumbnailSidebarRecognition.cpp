#include "ErrorSentence.h"
#include "OCRTextLayerApplier.h"
#include "PDFEditorDocument.h"
#include "RecognitionProgress.h"
#include "ThumbnailSidebar.h"

#include <QCoroTask>

#include <utility>

/// The window may be closed before all pages are done, which ends the run.
QCoro::Task<> ThumbnailSidebar::recognize(QPointer<ThumbnailSidebar> self, QPointer<RecognitionProgress> progress) {
    const std::shared_ptr<PDFEditorDocument> document = self->m_document;
    OCRTextLayerApplier::Options options;
    options.stop = progress->stop();
    options.progress = [progress](int page, int count) {
        if (progress)
            progress->tell(page, count);
    };
    PageAlert alert;
    try {
        const int count =
            co_await OCRTextLayerApplier::apply(*document, document->undoManager().get(), std::move(options));
        if (progress && !progress->hasBegun())
            alert = {QStringLiteral("Nothing to Recognize"), QStringLiteral("Every page already has a text layer.")};
        else
            alert = {QStringLiteral("Recognition Complete"),
                     QStringLiteral("Added a searchable text layer to %1 page%2.")
                         .arg(QString::number(count), count == 1 ? QString() : QStringLiteral("s"))};
    } catch (const OCRTextLayerApplier::DataMissing& error) {
        alert = {QStringLiteral("Couldn't Recognize Text"), QString::fromUtf8(error.what())};
    } catch (...) {
        alert = {QStringLiteral("Couldn't Recognize Text"), sentenceOfCurrentError("recognizing text")};
    }
    if (!RecognitionProgress::end(progress) || !self)
        co_return;
    self->pagesHaveChanged();
    self->showAlert(alert, QStringLiteral("text.viewfinder"));
}

void ThumbnailSidebar::recognizeText() {
    if (m_recognition)
        return; // it runs already
    m_document->commitEditing();
    m_recognition = new RecognitionProgress(this);
    recognize(this, m_recognition);
}
