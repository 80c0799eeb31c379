#include "RedactionApplier.h"

#include "PDFDocument.h"
#include "PDFEditorDocument.h"
#include "PDFPage.h"
#include "PDFPageRasterizer.h"
#include "PageReplacement.h"
#include "RedactionMarkerAnnotation.h"

#include <QPainter>

#include <algorithm>

namespace {

/// Null for a page that can't be drawn.
std::shared_ptr<PDFPage> flattened(const PDFPage& page, const std::vector<QRectF>& boxes) {
    const QImage picture = PDFPageRasterizer::render(page, RedactionApplier::renderScale, [&boxes](QPainter& painter) {
        painter.setRenderHint(QPainter::Antialiasing, false); // a box covers the pixels at its edges whole
        for (const QRectF& box : boxes)
            painter.fillRect(box, Qt::black);
    });
    return PDFPage::fromImage(picture, page);
}

} // namespace

std::vector<QRectF> RedactionApplier::pendingBoxes(const PDFPage& page) {
    std::vector<QRectF> boxes;
    for (const auto& annotation : page.annotations())
        if (std::dynamic_pointer_cast<RedactionMarkerAnnotation>(annotation) ||
            annotation->contents() == RedactionMarkerAnnotation::marker)
            boxes.push_back(annotation->bounds());
    return boxes;
}

bool RedactionApplier::arePending(const PDFDocument& document) {
    const std::vector<std::shared_ptr<PDFPage>> pages = document.knownPages();
    return std::any_of(pages.begin(), pages.end(), [](const std::shared_ptr<PDFPage>& page) {
        return page->annotationsLoaded() && !pendingBoxes(*page).empty();
    });
}

int RedactionApplier::apply(PDFEditorDocument& document, UndoManager* undoManager) {
    std::vector<PageReplacement> replacements;
    const std::shared_ptr<PDFDocument> pdf = document.pdfDocument();
    for (int index = 0; index < pdf->pageCount(); ++index) {
        const std::shared_ptr<PDFPage> page = pdf->page(index);
        const std::vector<QRectF> boxes = pendingBoxes(*page);
        if (boxes.empty())
            continue;
        if (std::shared_ptr<PDFPage> picture = flattened(*page, boxes))
            replacements.push_back({index, page, std::move(picture)});
    }
    const int count = static_cast<int>(replacements.size());
    PageReplacement::apply(std::move(replacements), document, undoManager);
    return count;
}
