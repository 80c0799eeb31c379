#include "PDFOutline.h"

#include "PDFFileOutline.h"
#include "PDFSource.h"

#include <algorithm>

namespace {

/// With a destination for each entry that has a page, even if nothing stands for it here.
std::shared_ptr<PDFOutline> treeOf(const std::shared_ptr<PDFSource>& file, const PDFOutline::PageOf& pageOf) {
    if (!file->outline().exists)
        return nullptr;
    std::vector<std::shared_ptr<PDFOutline>> levels{std::make_shared<PDFOutline>()};
    for (const PDFFileOutline::Entry& entry : file->outline().entries) {
        auto item = std::make_shared<PDFOutline>();
        item->setLabel(entry.label);
        item->setUrl(entry.url);
        item->setOpen(entry.open);
        if (entry.page >= 0)
            item->setDestination(PDFDestination(pageOf(entry.page), entry.x, entry.y, entry.zoom));
        item->setInFile({file, entry.object, true, true});
        levels.resize(std::min(levels.size(), std::size_t(entry.level) + 1));
        levels.back()->insertChild(item, levels.back()->numberOfChildren());
        levels.push_back(std::move(item));
    }
    return levels.front();
}

} // namespace

std::shared_ptr<PDFOutline> PDFOutline::of(const std::shared_ptr<PDFSource>& file, const PageOf& pageOf) {
    std::shared_ptr<PDFOutline> root = treeOf(file, pageOf);
    std::vector<PDFOutline*> pending{root.get()};
    while (root && !pending.empty()) {
        PDFOutline* item = pending.back();
        pending.pop_back();
        if (item->m_destination && !item->m_destination->page())
            item->m_destination.reset();
        for (const auto& child : item->m_children)
            pending.push_back(child.get());
    }
    return root;
}

std::shared_ptr<PDFOutline> PDFOutline::partOf(const std::shared_ptr<PDFSource>& file, const PageOf& pageOf) {
    const std::shared_ptr<PDFOutline> root = treeOf(file, pageOf);
    const auto place = [](const PDFOutline& item) {
        return item.m_destination->page() ? item.m_destination : std::nullopt;
    };
    return root ? root->copyWhere(place) : nullptr;
}

std::shared_ptr<PDFOutline> PDFOutline::child(int index) const {
    return index >= 0 && index < numberOfChildren() ? m_children[std::size_t(index)] : nullptr;
}

void PDFOutline::insertChild(const std::shared_ptr<PDFOutline>& child, int index) {
    // An item can't come below itself.
    for (std::shared_ptr<PDFOutline> above = shared_from_this(); above; above = above->parent())
        if (above == child)
            return;
    child->removeFromParent();
    child->m_parent = weak_from_this();
    m_children.insert(m_children.begin() + std::clamp(index, 0, numberOfChildren()), child);
}

void PDFOutline::removeFromParent() {
    const std::shared_ptr<PDFOutline> above = parent();
    m_parent.reset();
    if (!above)
        return;
    const auto me = std::find(above->m_children.begin(), above->m_children.end(), shared_from_this());
    if (me != above->m_children.end())
        above->m_children.erase(me);
}

std::shared_ptr<PDFOutline> PDFOutline::copyWhere(const Place& place) const {
    auto copy = std::make_shared<PDFOutline>();
    copy->m_label = m_label;
    copy->m_url = m_url;
    copy->m_open = m_open;
    copy->m_inFile = m_inFile;
    for (const auto& child : m_children) {
        const auto target = child->m_destination ? place(*child) : std::nullopt;
        const std::shared_ptr<PDFOutline> below = child->copyWhere(place);
        const bool leadsOn =
            target || (!child->m_destination && (child->m_children.empty() || !child->m_url.isEmpty()));
        if (!leadsOn && below->m_children.empty())
            continue;
        below->m_destination = target;
        below->m_inFile.hasTarget = below->m_inFile.hasTarget && (target || !child->m_destination);
        below->m_parent = copy;
        copy->m_children.push_back(below);
    }
    return copy;
}
