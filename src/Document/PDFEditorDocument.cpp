#include "PDFEditorDocument.h"

#include "PDFDocument.h"
#include "PDFError.h"
#include "QuilloAssert.h"

#include <new>

PDFEditorDocument::PDFEditorDocument(QObject* parent)
    : Document(parent), m_pdfDocument(std::make_shared<PDFDocument>()) {}

PDFEditorDocument::~PDFEditorDocument() = default;

void PDFEditorDocument::setPdfDocument(const std::shared_ptr<PDFDocument>& pdfDocument) {
    QUILLO_ASSERT(pdfDocument, "A document always holds a PDFDocument.");
    if (m_pdfDocument == pdfDocument)
        return;
    const auto previous = std::exchange(m_pdfDocument, pdfDocument); // alive until every view has let go of it
    Q_EMIT pdfDocumentChanged();
    Q_EMIT objectWillChange();
}

void PDFEditorDocument::setWasPasswordProtected(bool wasProtected) {
    if (m_wasPasswordProtected == wasProtected)
        return;
    m_wasPasswordProtected = wasProtected;
    Q_EMIT wasPasswordProtectedChanged(wasProtected);
}

QString PDFEditorDocument::openNotice() const {
    return m_pdfDocument->wasRepaired()
               ? u"This file was damaged and has been repaired. Some of its content may be missing."_qs
               : QString();
}

/// Runs `operation`, which may need much memory, and turns what it throws into the document machinery's error.
template <typename Operation>
static auto withDocumentErrors(Operation operation) {
    try {
        return operation();
    } catch (const PDFError& error) {
        throw DocumentError(error.sentence());
    } catch (const std::bad_alloc&) {
        throw DocumentError(u"There is not enough free memory for this document."_qs);
    }
}

void PDFEditorDocument::read(const QUrl& url) {
    if (!url.isLocalFile())
        throw DocumentError(u"Only files on this computer can be opened."_qs);
    const auto pdfDocument = withDocumentErrors([&url] { return PDFDocument::fromFile(url.toLocalFile()); });
    setWasPasswordProtected(pdfDocument->isLocked());
    setPdfDocument(pdfDocument);
}

QByteArray PDFEditorDocument::dataRepresentation() const {
    if (m_pdfDocument->isLocked())
        throw DocumentError(u"This PDF is locked. Unlock it with its password before saving it."_qs);
    return withDocumentErrors([this] { return m_pdfDocument->dataRepresentation(); });
}

QString PDFEditorDocument::fileNameExtension() const {
    return u"pdf"_qs;
}
