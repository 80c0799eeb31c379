#include "DocumentFreezer.h"

#include "PDFAnnotation.h"
#include "PDFDocument.h"
#include "PDFDraft.h"
#include "PDFOutline.h"
#include "PDFPage.h"
#include "QuilloAssert.h"

#include <algorithm>
#include <set>
#include <typeinfo>
#include <unordered_set>

DocumentContents DocumentFreezer::freeze() {
    m_contents.source = m_document.m_source;
    m_contents.taken = QDateTime::currentDateTime();
    freezePages();
    if (m_document.m_outlineChanged)
        freezeOutline();
    m_contents.attributesChanged = m_document.m_attributesChanged;
    if (m_contents.attributesChanged)
        m_contents.attributes = m_document.m_attributes.value_or(QVariantMap());
    return std::move(m_contents);
}

void DocumentFreezer::freezePages() {
    const std::vector<PDFPageContent> contents = m_document.pageContents();
    m_contents.pages.reserve(contents.size());
    std::unordered_set<const PDFPage*> drafted;
    for (const PDFDraft::Change& change : m_draft.changes)
        drafted.insert(change.page.get());
    for (std::size_t i = 0; i < contents.size(); ++i) {
        const std::shared_ptr<PDFPage>& live = m_document.m_pages[i];
        const bool modified = live && (live->isModified() || drafted.count(live.get()) > 0);
        m_contents.pages.push_back({contents[i], modified ? live->copy() : nullptr, modified});
        if (live)
            m_places[live.get()] = i;
    }
    for (std::size_t i = 0; i < contents.size(); ++i)
        if (m_contents.pages[i].modified && m_document.m_pages[i]->annotationsLoaded())
            freezeDestinations(*m_document.m_pages[i], *m_contents.pages[i].page);
    putDraft();
}

void DocumentFreezer::putDraft() {
    struct Change {
        std::shared_ptr<PDFPage> page;
        std::shared_ptr<PDFAnnotation> present;
        std::shared_ptr<PDFAnnotation> drafted;
    };
    std::vector<Change> changes; // in the copies, of which all are found before one of them moves
    for (const PDFDraft::Change& change : m_draft.changes) {
        const auto place = m_places.find(change.page.get());
        if (place == m_places.end())
            continue;
        const auto& live = change.page->annotations();
        const auto found = std::find(live.begin(), live.end(), change.present);
        if (change.present && found == live.end())
            continue;
        const std::shared_ptr<PDFPage>& copy = m_contents.pages[place->second].page;
        changes.push_back(
            {copy, change.present ? copy->annotations()[std::size_t(found - live.begin())] : nullptr, change.drafted});
    }
    for (const Change& change : changes) {
        const int index =
            change.present ? change.page->removeAnnotation(change.present) : int(change.page->annotations().size());
        if (change.drafted)
            change.page->insertAnnotation(change.drafted, index);
    }
}

void DocumentFreezer::freezeDestinations(const PDFPage& live, const PDFPage& copy) {
    std::set<int> used;
    for (std::size_t i = 0; i < live.annotations().size(); ++i) {
        const PDFAnnotation& from = *live.annotations()[i];
        PDFAnnotation& to = *copy.annotations()[i];
        QUILLO_ASSERT(typeid(from) == typeid(to), "a kind of annotation makes copies of its own kind");
        std::optional<PDFDestination> target = from.values().link.destination;
        // What stands where it stood in its file keeps what is written there. Another one that came from a file has a
        // place there which only the live document can find.
        const bool inPlace =
            from.origin() && from.origin()->content == live.content() && used.insert(from.origin()->index).second;
        if (!target && from.values().link.leadsInside && !inPlace)
            target = from.destination();
        if (target)
            to.leadTo(frozen(*target));
    }
}

PDFDestination DocumentFreezer::frozen(const PDFDestination& destination) {
    const std::shared_ptr<PDFPage> live = destination.page();
    const auto place = m_places.find(live.get());
    std::shared_ptr<PDFPage> copy;
    if (place != m_places.end()) {
        DocumentContents::Page& page = m_contents.pages[place->second];
        if (!page.page)
            page.page = std::make_shared<PDFPage>(page.content);
        copy = page.page;
    }
    return {copy, destination.x(), destination.y(), destination.zoom()};
}

void DocumentFreezer::freezeOutline() {
    m_contents.outlineChanged = true;
    if (!m_document.m_outline)
        return;
    struct Item {
        const PDFOutline* live;
        std::shared_ptr<PDFOutline> copy;
    };
    m_contents.outline = std::make_shared<PDFOutline>();
    std::vector<Item> pending{{m_document.m_outline.get(), m_contents.outline}};
    while (!pending.empty()) {
        const Item parent = pending.back();
        pending.pop_back();
        for (int i = 0; i < parent.live->numberOfChildren(); ++i) {
            const std::shared_ptr<PDFOutline> child = parent.live->child(i);
            auto copy = std::make_shared<PDFOutline>();
            copy->setLabel(child->label());
            copy->setUrl(child->url());
            copy->setOpen(child->isOpen());
            if (child->destination())
                copy->setDestination(frozen(*child->destination()));
            if (child->inFile().file == m_document.m_source)
                copy->setInFile(child->inFile());
            parent.copy->insertChild(copy, i);
            pending.push_back({child.get(), copy});
        }
    }
}
