#include "PDFOutline.h"

#include <algorithm>

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
