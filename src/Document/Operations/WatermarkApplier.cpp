#include "WatermarkApplier.h"

#include "PDFDocument.h"
#include "PDFEditorDocument.h"
#include "PDFPage.h"
#include "UndoManager.h"
#include "WatermarkAnnotation.h"

#include <memory>
#include <utility>
#include <vector>

namespace {

struct Stamped {
    std::shared_ptr<PDFPage> page;
    std::shared_ptr<PDFAnnotation> annotation;
};
using AllStamped = std::shared_ptr<const std::vector<Stamped>>; // of all steps of one chain

void put(const AllStamped& all, PDFEditorDocument& document) {
    for (const Stamped& each : *all)
        each.page->putOnTop(each.annotation);
    document.tellPagesChanged();
}

} // namespace

void WatermarkApplier::apply(const QString& text, double opacity, PDFEditorDocument& document,
                             UndoManager* undoManager) {
    const std::shared_ptr<PDFDocument> pdf = document.pdfDocument();
    auto stamped = std::make_shared<std::vector<Stamped>>();
    for (int i = 0; i < pdf->pageCount(); ++i) {
        const std::shared_ptr<PDFPage> page = pdf->page(i);
        const QRectF seen = page->bounds(PDFDisplayBox::cropBox);
        stamped->push_back({page, std::make_shared<WatermarkAnnotation>(text, opacity, seen)});
    }
    if (stamped->empty())
        return;
    const AllStamped all = std::move(stamped);
    put(all, document);
    if (!undoManager)
        return;
    undoManager->registerUndo(&document, [&document, all, undoManager] {
        for (const Stamped& each : *all)
            each.page->takeOff(each.annotation);
        document.tellPagesChanged();
        undoManager->registerUndo(&document, [&document, all] { put(all, document); });
    });
}
