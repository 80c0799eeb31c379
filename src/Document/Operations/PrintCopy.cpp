#include "PrintCopy.h"

#include "PDFDocument.h"
#include "PDFDocumentSnapshot.h"
#include "PDFPage.h"

#include <utility>

PrintCopy::PrintCopy(std::shared_ptr<const PDFDocumentSnapshot> snapshot, bool annotations)
    : m_snapshot(std::move(snapshot)), m_annotations(annotations) {}

static bool areAllPages(const PDFDocument& document, const std::vector<int>& pages) {
    for (std::size_t i = 0; i < pages.size(); ++i)
        if (pages[i] != static_cast<int>(i))
            return false;
    return static_cast<int>(pages.size()) == document.pageCount();
}

PrintCopy PrintCopy::of(const PDFDocument& document, const std::vector<int>& pages, bool annotations) {
    if (document.isLocked() || (!document.isEncrypted() && areAllPages(document, pages)))
        return {PDFDocumentSnapshot::of(document), annotations};
    PDFDocument printed;
    for (const int index : pages)
        if (const auto page = document.page(index))
            printed.insert(page->copy(), printed.pageCount());
    return {PDFDocumentSnapshot::of(printed), annotations};
}

QByteArray PrintCopy::bytes() const {
    return m_annotations ? m_snapshot->dataRepresentation() : m_snapshot->dataWithoutMarkup();
}
