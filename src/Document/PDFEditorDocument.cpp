#include "PDFEditorDocument.h"

#include "DocumentSnapshot.h"
#include "FileError.h"
#include "PDFDocument.h"
#include "PDFDocumentSnapshot.h"
#include "PDFDraft.h"
#include "PDFError.h"
#include "QuilloAssert.h"
#include "ThumbnailCache.h"

#include <QFile>

#include <algorithm>
#include <exception>
#include <new>

PDFEditorDocument::PDFEditorDocument(QObject* parent)
    : Document(parent), m_pdfDocument(std::make_shared<PDFDocument>()) {}

PDFEditorDocument::~PDFEditorDocument() = default;

void PDFEditorDocument::tellPagesChanged() {
    ThumbnailCache::removeAll();
    Q_EMIT objectWillChange();
}

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
               ? QStringLiteral("This file was damaged and has been repaired. Some of its content may be missing.")
               : QString();
}

/// A file that can't be written is told with what the user can do about it.
static DocumentError documentError(const PDFError& error) {
    if (error.kind() == PDFError::Kind::breaksSignatures)
        return DocumentError::ofSignatures(error.sentence());
    try {
        std::rethrow_if_nested(error);
    } catch (const FileError& cause) {
        return DocumentError(cause);
    } catch (const std::exception&) { // the sentence of the outer error says more
    }
    return DocumentError(error.sentence());
}

/// Runs `operation`, which may need much memory, and turns what it throws into the document machinery's error.
template <typename Operation>
static auto withDocumentErrors(Operation operation) {
    try {
        return operation();
    } catch (const PDFError& error) {
        std::throw_with_nested(documentError(error));
    } catch (const std::bad_alloc&) {
        std::throw_with_nested(DocumentError(QStringLiteral("There is not enough free memory for this document.")));
    }
}

namespace {

class PDFEditorDocumentSnapshot : public DocumentSnapshot {
public:
    PDFEditorDocumentSnapshot(std::shared_ptr<const PDFDocumentSnapshot> contents, SignatureCare care)
        : m_contents(std::move(contents)), m_care(care) {}

    FileStamp write(const QString& path, const std::optional<FileStamp>& expected) const override {
        PDFWriteOptions options;
        options.keepsSignatures = m_care == SignatureCare::keep;
        return withDocumentErrors([&] { return m_contents->write(path, options, expected); });
    }

private:
    const std::shared_ptr<const PDFDocumentSnapshot> m_contents;
    const SignatureCare m_care;
};

} // namespace

Document::Reading PDFEditorDocument::readingOf(const QUrl& url) {
    return [url]() -> Filling {
        if (!url.isLocalFile())
            throw DocumentError(QStringLiteral("Only files on this computer can be opened."));
        const auto source = withDocumentErrors([&url] { return PDFDocument::openSource(url.toLocalFile()); });
        return [url, source](Document& document) {
            const auto read = withDocumentErrors([&source] { return PDFDocument::fromSource(source); });
            static_cast<PDFEditorDocument&>(document).hold(read, url);
        };
    };
}

void PDFEditorDocument::hold(const std::shared_ptr<PDFDocument>& read, const QUrl& url) {
    const bool wasLocked = read->isLocked();
    if (wasLocked && url == fileURL())
        read->unlockLike(*m_pdfDocument); // the file is read again
    setWasPasswordProtected(wasLocked);
    setPdfDocument(read);
}

bool PDFEditorDocument::looksWhole(const QUrl& url) {
    constexpr qint64 tailSize = 1024; // readers look for the mark there
    QFile file(url.toLocalFile());
    if (!file.open(QIODevice::ReadOnly))
        return false;
    file.seek(std::max<qint64>(0, file.size() - tailSize));
    return file.read(tailSize).contains("%%EOF");
}

static void refuseLocked(const PDFDocument& pdfDocument) {
    if (pdfDocument.isLocked())
        throw DocumentError(QStringLiteral("This PDF is locked. Unlock it with its password before saving it."));
}

QByteArray PDFEditorDocument::dataRepresentation() const {
    refuseLocked(*m_pdfDocument);
    return withDocumentErrors([this] { return m_pdfDocument->dataRepresentation(); });
}

std::shared_ptr<const DocumentSnapshot> PDFEditorDocument::snapshot(SignatureCare care) const {
    refuseLocked(*m_pdfDocument);
    return withDocumentErrors(
        [&] { return std::make_shared<PDFEditorDocumentSnapshot>(PDFDocumentSnapshot::of(*m_pdfDocument), care); });
}

PDFDraft PDFEditorDocument::draft() const {
    PDFDraft draft;
    if (isBeingTyped())
        Q_EMIT draftRequested(draft);
    return draft;
}

QString PDFEditorDocument::fileNameExtension() const {
    return QStringLiteral("pdf");
}
