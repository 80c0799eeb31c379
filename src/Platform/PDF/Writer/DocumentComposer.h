#pragma once

#include <QByteArray>
#include <QString>

class PDFDocument;
struct DocumentContents;
struct PDFWriteOptions;

/// Composes the bytes of a document as it would be saved, and stores them. Main thread.
class DocumentComposer {
public:
    /// Throws `PDFError`.
    [[nodiscard]] static QByteArray compose(const PDFDocument& document, const PDFWriteOptions& options);

    /// Replaces or creates the file in one step; throws `PDFError` and leaves an old file as it was.
    static void store(const QByteArray& bytes, const QString& path);

private:
    [[nodiscard]] static DocumentContents contentsOf(const PDFDocument& document);
};
