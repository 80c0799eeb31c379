#include "PageStrings.h"

#include "FlowingText.h"
#include "PDFSource.h"
#include "PageText.h"

#include <functional>

bool PageStrings::Order::operator()(const PDFPageContent& a, const PDFPageContent& b) const {
    const std::less<const PDFSource*> before;
    return a.source == b.source ? a.pageNumber < b.pageNumber : before(a.source.get(), b.source.get());
}

QString PageStrings::string(const PDFPageContent& page, const std::stop_token& stop) {
    if (!page.source)
        return {};
    {
        const std::lock_guard guard(m_mutex);
        const auto found = m_strings.find(page);
        if (found != m_strings.end())
            return found->second;
    }
    // A copy of the characters alone: the string that was read has room for more.
    QString read = QStringView(FlowingText(*page.source->readText(page.pageNumber, stop)).string()).toString();
    if (stop.stop_requested())
        return read;
    const std::lock_guard guard(m_mutex);
    if (m_length + read.size() <= m_limit && m_strings.try_emplace(page, read).second)
        m_length += read.size();
    return read;
}

void PageStrings::clear() {
    const std::lock_guard guard(m_mutex);
    m_strings.clear();
    m_length = 0;
}
