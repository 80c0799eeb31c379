#pragma once

#include "DocumentContents.h"

#include <memory>
#include <unordered_map>

class PDFDestination;
class PDFDocument;
class PDFSource;
struct PDFDraft;

/// Takes the contents of a live document: copies that nobody else has of what was changed, so that they can be written
/// on another thread. Main thread; once.
class DocumentFreezer {
public:
    /// The contents are those of the document with `draft` put into it. Both live longer.
    DocumentFreezer(const PDFDocument& document, const PDFDraft& draft) : m_document(document), m_draft(draft) {}

    /// The document isn't locked.
    [[nodiscard]] DocumentContents freeze();

private:
    void freezePages();
    void freezeDestinations(const PDFPage& live, const PDFPage& copy);
    void putDraft();
    void freezeWhole();
    void freezeOutline();
    [[nodiscard]] std::shared_ptr<PDFSource> baseOfCopies(const std::shared_ptr<PDFSource>& original);
    /// The same place on the copy of its page; one without a page when that is none of the document's.
    [[nodiscard]] PDFDestination frozen(const PDFDestination& destination);

    const PDFDocument& m_document;
    const PDFDraft& m_draft;
    DocumentContents m_contents;
    std::unordered_map<const PDFPage*, std::size_t> m_places; // of the live pages
};
