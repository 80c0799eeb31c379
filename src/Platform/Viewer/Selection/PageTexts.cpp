#include "PageTexts.h"

#include "PDFSource.h"
#include "PageText.h"

#include <algorithm>

void PageTexts::want(const std::vector<PDFPageContent>& contents) {
    if (contents == m_wanted)
        return;
    m_wanted = contents;
    const auto isWanted = [this](const PDFPageContent& content) {
        return std::find(m_wanted.begin(), m_wanted.end(), content) != m_wanted.end();
    };
    std::erase_if(m_texts, [&](const Entry& entry) { return !isWanted(entry.first); });
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
    return content.source ? content.source->text(content.pageNumber) : nullptr;
}

void PageTexts::take(std::vector<Entry> entries) {
    for (Entry& entry : entries) {
        if (std::find(m_wanted.begin(), m_wanted.end(), entry.first) != m_wanted.end() && !text(entry.first))
            m_texts.push_back(std::move(entry));
    }
    Q_EMIT loaded();
}
