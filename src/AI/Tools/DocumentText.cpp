#include "DocumentText.h"

#include "FlowingText.h"
#include "PDFDocument.h"
#include "PDFSource.h"
#include "PageStrings.h"
#include "PageText.h"

DocumentText::DocumentText(const PDFDocument& document, std::shared_ptr<PageStrings> strings, std::stop_token stop)
    : m_pages(document.pageContents()), m_strings(std::move(strings)), m_stop(std::move(stop)) {}

QString DocumentText::string(int index) const {
    const PDFPageContent& page = m_pages.at(static_cast<std::size_t>(index));
    if (m_strings)
        return m_strings->string(page, m_stop);
    return page.source ? FlowingText(*page.source->readText(page.pageNumber, m_stop)).string() : QString();
}
