#include "RedactionApplier.h"

#include "PDFDocument.h"
#include "PDFEditorDocument.h"
#include "PDFPage.h"
#include "PDFPageRasterizer.h"
#include "RedactionMarkerAnnotation.h"

#include <QPainter>

#include <algorithm>
#include <utility>

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

RedactionApplier::Run::Run(PDFEditorDocument& document) : m_document(document) {
    const std::shared_ptr<PDFDocument>& pdf = document.pdfDocument();
    for (int index = 0; index < pdf->pageCount(); ++index)
        if (!pendingBoxes(*pdf->page(index)).empty())
            m_marked.push_back(index);
}

bool RedactionApplier::Run::drawNext() {
    if (m_drawn >= pageCount())
        return false;
    const int index = m_marked[static_cast<std::size_t>(m_drawn++)];
    const std::shared_ptr<PDFPage> page = m_document.pdfDocument()->page(index);
    if (std::shared_ptr<PDFPage> picture = flattened(*page, pendingBoxes(*page)))
        m_replacements.push_back({index, page, std::move(picture)});
    return true;
}

int RedactionApplier::Run::finish(UndoManager* undoManager) {
    const int count = static_cast<int>(m_replacements.size());
    PageReplacement::apply(std::exchange(m_replacements, {}), m_document, undoManager);
    return count;
}

int RedactionApplier::apply(PDFEditorDocument& document, UndoManager* undoManager) {
    Run run(document);
    while (run.drawNext()) {
    }
    return run.finish(undoManager);
}
