#include "RedactionApplier.h"

#include "PDFDocument.h"
#include "PDFEditorDocument.h"
#include "PDFPage.h"
#include "PDFPageRasterizer.h"
#include "PDFSource.h"
#include "RedactionMarkerAnnotation.h"

#include <QPainter>

#include <algorithm>
#include <unordered_set>
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

/// Whether only the page's file knows the page's annotations.
bool isUnread(const PDFDocument& document, int index) {
    return document.identityOfPage(index) == 0 || !document.page(index)->annotationsLoaded();
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

std::vector<int> RedactionApplier::markedPages(const PDFDocument& document) {
    const std::vector<PDFPageContent> contents = document.pageContents();
    std::vector<int> marked;
    for (int index = 0; index < document.pageCount(); ++index) {
        if (isUnread(document, index)) {
            const PDFPageContent& content = contents[static_cast<std::size_t>(index)];
            const auto found = content.source->pagesWithContents(RedactionMarkerAnnotation::marker);
            if (!std::binary_search(found->begin(), found->end(), content.pageNumber))
                continue;
        }
        if (!pendingBoxes(*document.page(index)).empty())
            marked.push_back(index);
    }
    return marked;
}

std::vector<std::shared_ptr<PDFSource>> RedactionApplier::unsearchedFiles(const PDFDocument& document) {
    std::stop_source only;
    only.request_stop(); // asks for what is known
    std::unordered_set<const PDFSource*> seen;
    std::vector<std::shared_ptr<PDFSource>> files;
    const std::vector<PDFPageContent> contents = document.pageContents();
    for (int index = 0; index < document.pageCount(); ++index) {
        const std::shared_ptr<PDFSource>& file = contents[static_cast<std::size_t>(index)].source;
        if (isUnread(document, index) && seen.insert(file.get()).second &&
            !file->pagesWithContents(RedactionMarkerAnnotation::marker, only.get_token()))
            files.push_back(file);
    }
    return files;
}

void RedactionApplier::search(const PDFSource& file, const std::stop_token& stop) {
    (void)file.pagesWithContents(RedactionMarkerAnnotation::marker, stop);
}

RedactionApplier::Run::Run(PDFEditorDocument& document)
    : m_document(document), m_marked(markedPages(*document.pdfDocument())) {}

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
