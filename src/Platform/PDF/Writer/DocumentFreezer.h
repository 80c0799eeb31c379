#pragma once

#include "DocumentContents.h"

#include <unordered_map>

class PDFDestination;
class PDFDocument;

/// Takes the contents of a live document: copies that nobody else has of what was changed, so that they can be written
/// on another thread. Main thread; once.
class DocumentFreezer {
public:
    explicit DocumentFreezer(const PDFDocument& document) : m_document(document) {}

    /// The document isn't locked.
    [[nodiscard]] DocumentContents freeze();

private:
    void freezePages();
    void freezeDestinations(const PDFPage& live, const PDFPage& copy);
    void freezeOutline();
    /// The same place on the copy of its page; one without a page when that is none of the document's.
    [[nodiscard]] PDFDestination frozen(const PDFDestination& destination);

    const PDFDocument& m_document;
    DocumentContents m_contents;
    std::unordered_map<const PDFPage*, std::size_t> m_places; // of the live pages
};
