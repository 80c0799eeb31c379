#pragma once

#include "FileStamp.h"

#include <QByteArray>
#include <QString>

#include <memory>
#include <optional>

class PDFDocument;
struct DocumentContents;
struct PDFDraft;
struct PDFWriteOptions;

/// A document as it was at one moment, to be written on any thread while the live one goes on changing. Taking one
/// costs a copy of the pages that somebody has changed, not of the file. Immutable; one thread at a time.
class PDFDocumentSnapshot {
public:
    /// Main thread. Throws `PDFError` for a locked document.
    [[nodiscard]] static std::shared_ptr<const PDFDocumentSnapshot> of(const PDFDocument& document);
    /// The same with what somebody is still typing.
    [[nodiscard]] static std::shared_ptr<const PDFDocumentSnapshot> of(const PDFDocument& document,
                                                                       const PDFDraft& draft);
    ~PDFDocumentSnapshot();
    PDFDocumentSnapshot(const PDFDocumentSnapshot&) = delete;
    PDFDocumentSnapshot& operator=(const PDFDocumentSnapshot&) = delete;

    /// The whole file as it would be saved; throws `PDFError`.
    [[nodiscard]] QByteArray dataRepresentation() const;
    [[nodiscard]] QByteArray dataRepresentation(const PDFWriteOptions& options) const;
    /// The same without annotations, apart from the fields of its form: what the pages themselves say. The document
    /// isn't protected.
    [[nodiscard]] QByteArray dataWithoutMarkup() const;
    /// Composes and stores a file, replacing one of that name only when the new one is complete, and with `expected`
    /// only the one with that stamp; gives the stamp of the written file. Throws `PDFError`.
    FileStamp write(const QString& path) const;
    FileStamp write(const QString& path, const PDFWriteOptions& options,
                    const std::optional<FileStamp>& expected = std::nullopt) const;

    /// The bytes of the file that the document was opened from; empty for a new document.
    [[nodiscard]] QByteArray sourceBytes() const;
    /// What appended to `sourceBytes` gives a file with all changes. Empty when nothing changed; none when the changes
    /// need a file written anew, or when the document has no source. Throws `PDFError`.
    [[nodiscard]] std::optional<QByteArray> update() const;

private:
    explicit PDFDocumentSnapshot(std::unique_ptr<DocumentContents> contents);

    std::unique_ptr<DocumentContents> m_contents;
};
