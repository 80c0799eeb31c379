#pragma once

#include <memory>
#include <vector>

class PDFDocument;
class PDFOutline;
class PDFPage;
struct PDFImport;

/// The entries of a document's outline that came with the pages of whole other documents. One comes as soon as all
/// pages of a document have, in their order; it goes with the last of them and comes back with the first. Reading what
/// an entry holds takes its time, so that is left to a worker until somebody looks at the outline.
class ImportedOutlines {
public:
    /// For a page that has just come into the document.
    void noteInserted(PDFDocument& document, PDFPage& page);
    /// For a page that has just left it.
    void noteRemoved(PDFDocument& document, PDFPage& page);
    /// Puts entries into the outline that aren't there yet. Before anybody sees it.
    void settle(PDFDocument& document);
    /// True while there are such entries, once settled.
    [[nodiscard]] bool hasEntries() const;

    /// The outline of a new document with these pages: that of the one document that all of them were copied from, or
    /// an entry for each whole one. Null when they bring none.
    [[nodiscard]] static std::shared_ptr<PDFOutline>
    outlineOfCopies(const std::vector<std::shared_ptr<PDFPage>>& pages);

private:
    std::shared_ptr<PDFImport> m_arriving;               // null unless some, but not all pages of a document have come
    std::vector<std::shared_ptr<PDFImport>> m_unsettled; // all pages have come, and nobody looked since
    std::vector<std::shared_ptr<PDFImport>> m_complete;  // those with an entry
};
