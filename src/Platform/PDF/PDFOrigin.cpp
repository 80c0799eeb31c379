#include "PDFOrigin.h"

#include "PDFDocument.h"
#include "PDFOutline.h"
#include "PDFPage.h"
#include "PDFSource.h"

#include <QThreadPool>

#include <utility>

namespace {

quint64 targetOf(const PDFOutline& item) {
    const std::shared_ptr<PDFPage> page = item.destination() ? item.destination()->page() : nullptr;
    return page ? page->identity() : 0;
}

} // namespace

void PDFOrigin::keepAll() {
    m_name = name();
    m_source = source();
    for (int i = 0; i < m_document->pageCount(); ++i)
        m_pages.push_back(pageAt(i));
    m_attributes = attributes();
    m_outlineOfSource = hasOutlineOfSource();
    m_attributesOfSource = hasAttributesOfSource();
    m_outlineRead = m_document->hasReadOutline() || !m_source;
    m_outline = m_outlineRead ? m_document->outlineRoot() : nullptr;
    for (int i = 0; i < m_document->pageCount(); ++i)
        if (const int number = m_document->sourcePage(i); number >= 0)
            m_bySourcePage.emplace(number, m_pages[std::size_t(i)]);
    std::vector<const PDFOutline*> pending{m_outline.get()};
    while (m_outline && !pending.empty()) {
        const PDFOutline* item = pending.back();
        pending.pop_back();
        if (item->destination())
            m_targets[item] = targetOf(*item);
        for (int i = 0; i < item->numberOfChildren(); ++i)
            pending.push_back(item->child(i).get());
    }
    m_document = nullptr;
}

QString PDFOrigin::name() const {
    if (!m_document)
        return m_name;
    if (const auto file = source(); file && !file->fileName().isEmpty())
        return file->fileName();
    const QString title = attributes().value(QStringLiteral("Title")).toString();
    return title.isEmpty() ? QStringLiteral("Document") : title;
}

std::shared_ptr<PDFSource> PDFOrigin::source() const {
    return m_document ? m_document->source() : m_source;
}

int PDFOrigin::pageCount() const {
    return m_document ? m_document->pageCount() : int(m_pages.size());
}

quint64 PDFOrigin::pageAt(int index) const {
    if (!m_document)
        return index >= 0 && index < int(m_pages.size()) ? m_pages[std::size_t(index)] : 0;
    return m_document->identityOfPage(index);
}

QVariantMap PDFOrigin::attributes() const {
    return m_document ? m_document->documentAttributes() : m_attributes;
}

bool PDFOrigin::hasOutlineOfSource() const {
    return m_document ? m_document->source() && !m_document->hasChangedOutline() : m_outlineOfSource;
}

bool PDFOrigin::hasAttributesOfSource() const {
    return m_document ? m_document->source() && !m_document->hasChangedAttributes() : m_attributesOfSource;
}

void PDFOrigin::readAhead() const {
    const std::shared_ptr<PDFSource> file = source();
    if (file && (!m_document || !m_document->hasReadOutline()))
        QThreadPool::globalInstance()->start([file] { (void)file->outline(); });
}

std::shared_ptr<PDFOutline> PDFOrigin::outlineFor(const Copies& copies) const {
    if (!m_document && !m_outlineRead && m_source) {
        const auto kept = PDFOutline::partOf(m_source, [&](int number) {
            const auto page = m_bySourcePage.find(number);
            return page == m_bySourcePage.end() ? nullptr : copies(page->second);
        });
        return kept && kept->numberOfChildren() > 0 ? kept : nullptr;
    }
    const std::shared_ptr<PDFOutline> all = m_document ? m_document->outlineRoot() : m_outline;
    if (!all)
        return nullptr;
    const auto place = [&](const PDFOutline& item) -> std::optional<PDFDestination> {
        const auto known = m_targets.find(&item);
        const std::shared_ptr<PDFPage> copy = copies(known == m_targets.end() ? targetOf(item) : known->second);
        if (!copy)
            return std::nullopt;
        return item.destination()->on(copy);
    };
    std::shared_ptr<PDFOutline> kept = all->copyWhere(place);
    return kept->numberOfChildren() > 0 ? kept : nullptr;
}
