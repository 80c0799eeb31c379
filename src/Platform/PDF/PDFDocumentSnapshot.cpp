#include "PDFDocumentSnapshot.h"

#include "DocumentComposer.h"
#include "DocumentContents.h"
#include "DocumentFreezer.h"
#include "PDFDocument.h"
#include "PDFDraft.h"
#include "PDFError.h"
#include "PDFMarkup.h"
#include "PDFSource.h"

PDFDocumentSnapshot::PDFDocumentSnapshot(std::unique_ptr<DocumentContents> contents)
    : m_contents(std::move(contents)) {}

PDFDocumentSnapshot::~PDFDocumentSnapshot() = default;

std::shared_ptr<const PDFDocumentSnapshot> PDFDocumentSnapshot::of(const PDFDocument& document) {
    return of(document, {});
}

std::shared_ptr<const PDFDocumentSnapshot> PDFDocumentSnapshot::of(const PDFDocument& document, const PDFDraft& draft) {
    if (document.isLocked())
        throw PDFError(PDFError::Kind::locked, QStringLiteral("It needs its password first."));
    auto contents = std::make_unique<DocumentContents>(DocumentFreezer(document, draft).freeze());
    return std::shared_ptr<const PDFDocumentSnapshot>(new PDFDocumentSnapshot(std::move(contents)));
}

QByteArray PDFDocumentSnapshot::dataRepresentation() const {
    return dataRepresentation({});
}

QByteArray PDFDocumentSnapshot::dataRepresentation(const PDFWriteOptions& options) const {
    return DocumentComposer::compose(*m_contents, options);
}

QByteArray PDFDocumentSnapshot::dataWithoutMarkup() const {
    return PDFMarkup::removed(dataRepresentation());
}

FileStamp PDFDocumentSnapshot::write(const QString& path) const {
    return write(path, {});
}

FileStamp PDFDocumentSnapshot::write(const QString& path, const PDFWriteOptions& options,
                                     const std::optional<FileStamp>& expected) const {
    return DocumentComposer::write(*m_contents, options, path, expected);
}

QByteArray PDFDocumentSnapshot::sourceBytes() const {
    return m_contents->source ? m_contents->source->sharedBytes() : QByteArray();
}

std::optional<QByteArray> PDFDocumentSnapshot::update() const {
    return DocumentComposer::update(*m_contents);
}
