#pragma once

#include <QByteArray>

#include <memory>
#include <vector>

class PDFDocument;
class PDFDocumentSnapshot;

/// What goes to a printer: some pages of a document as they are now, as a PDF file of their own without protection.
/// Pages stay what they are, text and lines, however large the paper. Immutable; one thread at a time.
class PrintCopy {
public:
    /// `pages` are zero-based, in the order of printing; those that the document lacks are left out. Without
    /// `annotations` only the pages themselves and the fields of forms are printed. Main thread; throws `PDFError` for
    /// a locked document.
    [[nodiscard]] static PrintCopy of(const PDFDocument& document, const std::vector<int>& pages, bool annotations);

    /// Any thread; takes as long as saving. Throws `PDFError`.
    [[nodiscard]] QByteArray bytes() const;

private:
    PrintCopy(std::shared_ptr<const PDFDocumentSnapshot> snapshot, bool annotations);

    std::shared_ptr<const PDFDocumentSnapshot> m_snapshot;
    bool m_annotations;
};
