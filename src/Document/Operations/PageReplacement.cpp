#include "PageReplacement.h"

#include "PDFDocument.h"
#include "PDFEditorDocument.h"
#include "PDFPage.h"
#include "UndoManager.h"

namespace {

using Replacements = std::shared_ptr<const std::vector<PageReplacement>>; // of all steps of one chain

void put(std::shared_ptr<PDFPage> PageReplacement::*page, const Replacements& all, PDFEditorDocument& document) {
    const std::shared_ptr<PDFDocument> pdf = document.pdfDocument();
    for (const PageReplacement& each : *all)
        pdf->replacePage(each.index, each.*page);
    document.tellPagesChanged();
}

} // namespace

void PageReplacement::apply(std::vector<PageReplacement> replacements, PDFEditorDocument& document,
                            UndoManager* undoManager) {
    if (replacements.empty())
        return;
    const auto all = std::make_shared<const std::vector<PageReplacement>>(std::move(replacements));
    put(&PageReplacement::replacement, all, document);
    if (!undoManager)
        return;
    undoManager->registerUndo(&document, [&document, all, undoManager] {
        put(&PageReplacement::original, all, document);
        undoManager->registerUndo(&document, [&document, all] { put(&PageReplacement::replacement, all, document); });
    });
}
