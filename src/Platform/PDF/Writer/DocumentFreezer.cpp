#include "DocumentFreezer.h"

#include "PDFAnnotation.h"
#include "PDFDocument.h"
#include "PDFDraft.h"
#include "PDFOrigin.h"
#include "PDFOutline.h"
#include "PDFPage.h"
#include "PDFSource.h"
#include "QuilloAssert.h"

#include <algorithm>
#include <set>
#include <typeinfo>
#include <unordered_set>

DocumentContents DocumentFreezer::freeze() {
    m_contents.source = m_document.m_source;
    m_contents.taken = QDateTime::currentDateTime();
    freezePages();
    freezeWhole();
    return std::move(m_contents);
}

/// What the document says of its pages as a whole. A new document of copies takes that from the file of theirs.
void DocumentFreezer::freezeWhole() {
    if (m_document.m_source) {
        m_contents.base = m_contents.about = m_document.m_source;
        m_contents.attributesChanged = m_document.m_attributesChanged;
        if (m_document.hasChangedOutline())
            freezeOutline();
    } else {
        const std::shared_ptr<PDFOrigin> origin = m_document.copiedFrom();
        m_contents.base = baseOfCopies(origin ? origin->source() : nullptr);
        const bool takesOutline = !m_document.hasChangedOutline() && m_contents.about && origin->hasOutlineOfSource();
        m_contents.outlineOfAbout = takesOutline && m_contents.base != m_contents.about;
        if (!takesOutline)
            freezeOutline();
        m_contents.attributesChanged = m_document.m_attributesChanged || !m_contents.about ||
                                       m_contents.base != m_contents.about || !origin->hasAttributesOfSource();
    }
    if (m_contents.attributesChanged)
        m_contents.attributes = m_document.documentAttributes();
}

/// The file of the document that all were copied from, or else the one with the most pages. None when that is much
/// larger than what comes from it: to look through it all would take longer than to take out what is needed.
std::shared_ptr<PDFSource> DocumentFreezer::baseOfCopies(const std::shared_ptr<PDFSource>& original) {
    constexpr int takenApartFrom = 200; // pages
    constexpr int smallPart = 8;
    std::unordered_map<const PDFSource*, int> counts;
    for (const DocumentContents::Page& page : m_contents.pages)
        ++counts[page.content.source.get()];
    std::shared_ptr<PDFSource> base;
    if (counts.count(original.get()) > 0)
        base = m_contents.about = original;
    for (const DocumentContents::Page& page : m_contents.pages)
        if (!m_contents.about && (!base || counts[page.content.source.get()] > counts[base.get()]))
            base = page.content.source;
    const bool isSmallPart =
        base && base->pageCount() >= takenApartFrom && counts[base.get()] * smallPart < base->pageCount();
    return isSmallPart ? nullptr : base;
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
        m_contents.pages.push_back(
            {contents[i], live ? live->place() : contents[i], modified ? live->plainCopy() : nullptr, modified});
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
    const auto known = m_places.find(live.get());
    const int index = known != m_places.end() ? int(known->second)
                      : live                  ? m_document.indexOfReplacing(live->place())
                                              : -1;
    std::shared_ptr<PDFPage> copy;
    if (index >= 0) {
        DocumentContents::Page& page = m_contents.pages[std::size_t(index)];
        if (!page.page)
            page.page = std::make_shared<PDFPage>(page.content);
        copy = page.page;
    }
    return {copy, destination.x(), destination.y(), destination.zoom()};
}

void DocumentFreezer::freezeOutline() {
    m_contents.outlineChanged = true;
    const std::shared_ptr<PDFOutline> live = m_document.outlineRoot();
    if (!live)
        return;
    m_contents.outline = live->copyWhere([this](const PDFOutline& item) {
        PDFDestination place = frozen(*item.destination());
        return place.page() ? std::optional(std::move(place)) : std::nullopt;
    });
}
