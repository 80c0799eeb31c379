#include "PageTexts.h"

#include "PDFSource.h"
#include "PageText.h"
#include "StopAfter.h"

#include <algorithm>
#include <stop_token>

void PageTexts::want(const std::vector<PDFPageContent>& contents) {
    if (contents == m_wanted)
        return;
    m_wanted = contents;
    const auto isWanted = [this](const PDFPageContent& content) {
        return std::find(m_wanted.begin(), m_wanted.end(), content) != m_wanted.end();
    };
    std::erase_if(m_texts, [&](const Entry& entry) { return !isWanted(entry.first); });
    std::erase_if(m_slow, [&](const PDFPageContent& content) { return !isWanted(content); });
    std::vector<PDFPageContent> missing;
    std::copy_if(m_wanted.begin(), m_wanted.end(), std::back_inserter(missing),
                 [this](const PDFPageContent& content) { return content.source && !text(content); });
    if (missing.empty()) {
        m_reading.cancel();
        return;
    }
    m_reading.start([this, missing = std::move(missing)](const std::stop_token& stop) {
        std::vector<Entry> entries;
        for (const PDFPageContent& content : missing) {
            if (stop.stop_requested())
                break;
            entries.emplace_back(content, content.source->text(content.pageNumber, stop));
        }
        if (stop.stop_requested())
            return; // the last one may be cut short
        QMetaObject::invokeMethod(
            this, [this, entries = std::move(entries)] { take(entries); }, Qt::QueuedConnection);
    });
}

std::shared_ptr<const PageText> PageTexts::text(const PDFPageContent& content) const {
    const auto found =
        std::find_if(m_texts.begin(), m_texts.end(), [&](const Entry& entry) { return entry.first == content; });
    return found == m_texts.end() ? nullptr : found->second;
}

std::shared_ptr<const PageText> PageTexts::textNow(const PDFPageContent& content) const {
    if (auto loaded = text(content))
        return loaded;
    if (!content.source || std::find(m_slow.begin(), m_slow.end(), content) != m_slow.end())
        return nullptr;
    const StopAfter patience;
    auto read = content.source->text(content.pageNumber, patience.token());
    if (!patience.token().stop_requested())
        return read;
    m_slow.push_back(content);
    return nullptr;
}

bool PageTexts::holdText(const std::vector<SpanReader::Span>& stretches) const {
    const StopAfter patience;
    for (const SpanReader::Span& stretch : stretches) {
        const PDFPageContent& content = stretch.content;
        auto page = text(content);
        // Past the cache of texts, which a long document would empty.
        if (!page && content.source)
            page = content.source->readText(content.pageNumber, patience.token());
        const int length = page ? static_cast<int>(page->string.size()) : 0;
        if (std::min(stretch.end.value_or(length), length) > stretch.start)
            return true;
        if (patience.token().stop_requested())
            break;
    }
    return false;
}

void PageTexts::take(std::vector<Entry> entries) {
    for (Entry& entry : entries) {
        if (std::find(m_wanted.begin(), m_wanted.end(), entry.first) != m_wanted.end() && !text(entry.first))
            m_texts.push_back(std::move(entry));
    }
    Q_EMIT loaded();
}
