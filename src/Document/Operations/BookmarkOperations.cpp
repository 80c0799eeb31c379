#include "BookmarkOperations.h"

#include "PDFDestination.h"
#include "PDFDocument.h"
#include "PDFEditorDocument.h"
#include "PDFOutline.h"
#include "UndoManager.h"

#include <algorithm>
#include <memory>
#include <unordered_map>

namespace {

using OutlineRoot = std::shared_ptr<PDFOutline>; // null for none

void setRoot(PDFEditorDocument& document, const OutlineRoot& root, const OutlineRoot& former,
             UndoManager* undoManager) {
    document.pdfDocument()->setOutlineRoot(root);
    Q_EMIT document.objectWillChange();
    if (undoManager)
        undoManager->registerUndo(
            &document, [&document, root, former, undoManager] { setRoot(document, former, root, undoManager); });
}

} // namespace

void BookmarkOperations::collect(const PDFOutline& outline, std::vector<Bookmark>& bookmarks,
                                 const PDFDocument& document) {
    std::unordered_map<const PDFPage*, int> places;   // each looked for once: that goes through the document
    std::vector<std::shared_ptr<PDFOutline>> pending; // the next one last
    const auto visitChildren = [&pending](const PDFOutline& parent) {
        for (int i = parent.numberOfChildren() - 1; i >= 0; --i)
            pending.push_back(parent.child(i));
    };
    visitChildren(outline);
    while (!pending.empty()) {
        const std::shared_ptr<PDFOutline> entry = pending.back();
        pending.pop_back();
        if (const auto page = entry->destination() ? entry->destination()->page() : nullptr;
            page && !entry->label().isEmpty()) {
            const auto [place, isNew] = places.try_emplace(page.get(), -1);
            if (isNew)
                place->second = document.index(page.get());
            if (place->second >= 0)
                bookmarks.push_back({.title = entry->label(), .pageIndex = place->second});
        }
        visitChildren(*entry);
    }
}

void BookmarkOperations::sort(std::vector<Bookmark>& bookmarks) {
    std::stable_sort(bookmarks.begin(), bookmarks.end(),
                     [](const Bookmark& one, const Bookmark& other) { return one.pageIndex < other.pageIndex; });
}

void BookmarkOperations::writeBookmarks(const std::vector<Bookmark>& bookmarks, PDFEditorDocument& document,
                                        UndoManager* undoManager) {
    const std::shared_ptr<PDFDocument> pdf = document.pdfDocument();
    const OutlineRoot former = pdf->outlineRoot();
    const auto root = std::make_shared<PDFOutline>();
    std::vector<Bookmark> sorted = bookmarks;
    sort(sorted);
    for (const Bookmark& bookmark : sorted) {
        const std::shared_ptr<PDFPage> page = pdf->page(bookmark.pageIndex);
        if (!page)
            continue;
        const auto entry = std::make_shared<PDFOutline>();
        entry->setLabel(bookmark.title);
        entry->setDestination(PDFDestination(page, QPointF(0, 0)));
        root->insertChild(entry, root->numberOfChildren());
    }
    setRoot(document, root, former, undoManager);
}
