#include "ImportedOutlines.h"

#include "PDFDocument.h"
#include "PDFImport.h"
#include "PDFOrigin.h"
#include "PDFOutline.h"
#include "PDFPage.h"

#include <algorithm>
#include <unordered_map>
#include <utility>

namespace {

/// The place at the top of the outline for what leads to the page with that index: behind the entries before it.
int placeFor(const PDFDocument& document, const PDFOutline& root, int page) {
    for (int i = root.numberOfChildren(); i > 0; --i) {
        const auto& destination = root.child(i - 1)->destination();
        const int index = destination ? document.index(destination->page().get()) : -1;
        if (index >= 0 && index < page)
            return i;
    }
    return 0;
}

/// The part of the outline of the document that leads to pages of which these are the copies.
std::shared_ptr<PDFOutline> theirOutline(const PDFOrigin& origin, const std::vector<std::shared_ptr<PDFPage>>& pages) {
    std::unordered_map<quint64, std::shared_ptr<PDFPage>> copies;
    for (const auto& page : pages)
        copies.emplace(page->original(), page);
    return origin.outlineFor([&copies](quint64 page) {
        const auto copy = copies.find(page);
        return copy == copies.end() ? nullptr : copy->second;
    });
}

/// The same below an entry under the document's name, which leads to the first of the pages.
std::shared_ptr<PDFOutline> entryFor(const PDFOrigin& origin, const std::vector<std::shared_ptr<PDFPage>>& pages) {
    std::shared_ptr<PDFOutline> entry = theirOutline(origin, pages);
    if (!entry)
        return nullptr;
    entry->setLabel(origin.name());
    entry->setDestination(PDFDestination(pages.front(), std::nullopt, std::nullopt));
    return entry;
}

} // namespace

void ImportedOutlines::noteInserted(PDFDocument& document, PDFPage& page) {
    if (const auto& known = page.import(); known && known->outlines == this) {
        // Back again: so is the entry, if the outline that it was taken from is still the document's.
        if (++known->present == 1 && known->entry && !known->entry->parent())
            if (const auto root = known->root.lock(); root && root == document.outlineRoot())
                root->insertChild(known->entry, known->place);
        return;
    }
    const std::shared_ptr<PDFOrigin>& origin = page.origin();
    if (!origin)
        return;
    const bool continues = m_arriving && m_arriving->origin == origin &&
                           m_arriving->present == int(m_arriving->pages.size()) &&
                           origin->pageAt(m_arriving->present) == page.original();
    if (!continues) {
        m_arriving.reset();
        if (origin->pageAt(0) != page.original())
            return;
        m_arriving = std::make_shared<PDFImport>();
        m_arriving->outlines = this;
        m_arriving->origin = origin;
    }
    page.setImport(m_arriving);
    m_arriving->pages.push_back(page.weak_from_this());
    if (++m_arriving->present < origin->pageCount())
        return;
    origin->readAhead();
    m_unsettled.push_back(std::exchange(m_arriving, nullptr));
}

void ImportedOutlines::noteRemoved(PDFDocument& document, PDFPage& page) {
    const auto& import = page.import();
    if (!import || import->outlines != this || --import->present > 0 || !import->entry)
        return;
    const std::shared_ptr<PDFOutline> root = import->entry->parent();
    if (!root || root != document.outlineRoot())
        return;
    import->root = root;
    for (int i = 0; i < root->numberOfChildren(); ++i)
        if (root->child(i) == import->entry)
            import->place = i;
    import->entry->removeFromParent();
}

bool ImportedOutlines::hasEntries() const {
    return std::any_of(m_complete.begin(), m_complete.end(),
                       [](const auto& import) { return import->entry->parent() != nullptr; });
}

void ImportedOutlines::settle(PDFDocument& document) {
    const std::vector<std::shared_ptr<PDFImport>> unsettled = std::exchange(m_unsettled, {});
    for (const std::shared_ptr<PDFImport>& import : unsettled) {
        if (import->present == 0) {
            m_unsettled.push_back(import); // they may come back
            continue;
        }
        std::vector<std::shared_ptr<PDFPage>> pages;
        for (const auto& each : import->pages)
            if (auto page = each.lock())
                pages.push_back(std::move(page));
        import->entry = entryFor(*import->origin, pages);
        if (!import->entry)
            continue;
        const auto first = std::find_if(pages.begin(), pages.end(),
                                        [&document](const auto& page) { return page->document() == &document; });
        const std::shared_ptr<PDFOutline> root = document.ownOutline();
        root->insertChild(import->entry, placeFor(document, *root, document.index(first->get())));
        m_complete.push_back(import);
    }
}

std::shared_ptr<PDFOutline> ImportedOutlines::outlineOfCopies(const std::vector<std::shared_ptr<PDFPage>>& pages) {
    std::vector<std::pair<std::shared_ptr<PDFOrigin>, std::vector<std::shared_ptr<PDFPage>>>> parts;
    for (const auto& page : pages) {
        const auto known = std::find_if(parts.begin(), parts.end(),
                                        [&page](const auto& part) { return part.first == page->origin(); });
        if (known == parts.end())
            parts.push_back({page->origin(), {page}});
        else
            known->second.push_back(page);
    }
    if (parts.size() == 1 && parts[0].first)
        return theirOutline(*parts[0].first, pages);
    auto root = std::make_shared<PDFOutline>();
    for (const auto& [origin, theirs] : parts)
        if (origin && int(theirs.size()) >= origin->pageCount())
            if (const std::shared_ptr<PDFOutline> entry = entryFor(*origin, theirs))
                root->insertChild(entry, root->numberOfChildren());
    return root->numberOfChildren() > 0 ? root : nullptr;
}
