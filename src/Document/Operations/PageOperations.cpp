#include "PageOperations.h"

#include "PDFDocument.h"
#include "PDFEditorDocument.h"
#include "PDFPage.h"
#include "UndoManager.h"

#include <algorithm>
#include <iterator>

namespace {

struct DeletedPage {
    int index; ///< when it was taken out
    std::shared_ptr<PDFPage> page;
};

/// `deleted` in ascending order.
void restorePages(PDFEditorDocument& document, const std::vector<DeletedPage>& deleted, const PageIndices& indices,
                  UndoManager* undoManager) {
    const std::shared_ptr<PDFDocument> pdf = document.pdfDocument();
    for (const DeletedPage& each : deleted)
        pdf->insert(each.page, each.index);
    document.tellPagesChanged();
    if (undoManager)
        undoManager->registerUndo(&document, [&document, indices, undoManager] {
            PageOperations::deletePages(document, indices, undoManager);
        });
}

} // namespace

void PageOperations::movePage(PDFEditorDocument& document, int from, int to, UndoManager* undoManager) {
    const std::shared_ptr<PDFDocument> pdf = document.pdfDocument();
    const int last = pdf->pageCount() - 1;
    if (from < 0 || from > last)
        return;
    const int destination = std::clamp(to, 0, last);
    if (destination == from)
        return;
    pdf->insert(pdf->removePage(from), destination);
    document.tellPagesChanged();
    if (undoManager)
        undoManager->registerUndo(&document, [&document, destination, from, undoManager] {
            movePage(document, destination, from, undoManager);
        });
}

void PageOperations::movePages(PDFEditorDocument& document, const PageIndices& indices, int gap,
                               UndoManager* undoManager) {
    if (undoManager)
        undoManager->beginUndoGrouping();
    // From the gap outwards, so that none of them shifts those that are still to move.
    const auto behind = indices.lower_bound(gap);
    int to = gap;
    for (auto index = behind; index != indices.end(); ++index)
        movePage(document, *index, to++, undoManager);
    to = gap;
    for (auto index = std::make_reverse_iterator(behind); index != indices.rend(); ++index)
        movePage(document, *index, --to, undoManager);
    if (undoManager)
        undoManager->endUndoGrouping();
}

void PageOperations::deletePages(PDFEditorDocument& document, const PageIndices& indices, UndoManager* undoManager) {
    const std::shared_ptr<PDFDocument> pdf = document.pdfDocument();
    std::vector<DeletedPage> deleted;
    for (auto index = indices.rbegin(); index != indices.rend(); ++index)
        if (std::shared_ptr<PDFPage> page = pdf->removePage(*index))
            deleted.push_back({*index, std::move(page)});
    if (deleted.empty())
        return;
    document.tellPagesChanged();
    if (!undoManager)
        return;
    std::reverse(deleted.begin(), deleted.end());
    undoManager->registerUndo(&document, [&document, deleted = std::move(deleted), indices, undoManager] {
        restorePages(document, deleted, indices, undoManager);
    });
}

void PageOperations::merge(PDFEditorDocument& document, const PDFDocument& source, int index,
                           UndoManager* undoManager) {
    std::vector<std::shared_ptr<PDFPage>> copies;
    for (int i = 0; i < source.pageCount(); ++i)
        copies.push_back(source.page(i)->copy());
    if (copies.empty())
        return;
    const std::shared_ptr<PDFDocument> pdf = document.pdfDocument();
    int at = std::clamp(index, 0, pdf->pageCount());
    PageIndices indices;
    for (const std::shared_ptr<PDFPage>& copy : copies) {
        pdf->insert(copy, at);
        indices.insert(at++);
    }
    document.tellPagesChanged();
    if (undoManager)
        undoManager->registerUndo(&document,
                                  [&document, indices, undoManager] { deletePages(document, indices, undoManager); });
}

std::shared_ptr<PDFDocument> PageOperations::extractPages(const PageIndices& indices, const PDFDocument& document) {
    auto extracted = std::make_shared<PDFDocument>();
    for (const int index : indices)
        if (const std::shared_ptr<PDFPage> page = document.page(index))
            extracted->insert(page->copy(), extracted->pageCount());
    return extracted;
}

std::shared_ptr<PDFDocument> PageOperations::mergeFiles(const std::vector<std::shared_ptr<PDFDocument>>& documents) {
    auto merged = std::make_shared<PDFDocument>();
    for (const std::shared_ptr<PDFDocument>& document : documents)
        for (int i = 0; i < document->pageCount(); ++i)
            merged->insert(document->page(i)->copy(), merged->pageCount());
    return merged;
}
