#include "DocumentContents.h"

#include "PDFSource.h"

#include <algorithm>

bool DocumentContents::hasAllSourcePages() const {
    if (!source || int(pages.size()) != source->pageCount())
        return false;
    std::vector<bool> seen(pages.size());
    for (const Page& page : pages) {
        const int number = page.content.pageNumber;
        if (page.content.source != source || number < 0 || number >= int(seen.size()) || seen[std::size_t(number)])
            return false;
        seen[std::size_t(number)] = true;
    }
    return true;
}

bool DocumentContents::hasSourceOrder() const {
    if (!source || int(pages.size()) != source->pageCount())
        return false;
    for (std::size_t i = 0; i < pages.size(); ++i)
        if (pages[i].content.source != source || pages[i].content.pageNumber != int(i))
            return false;
    return true;
}

bool DocumentContents::isUnchanged() const {
    return !outlineChanged && !attributesChanged && hasSourceOrder() &&
           std::none_of(pages.begin(), pages.end(), [](const Page& page) { return page.modified; });
}
