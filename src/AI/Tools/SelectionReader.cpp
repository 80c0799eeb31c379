#include "SelectionReader.h"

#include "AnnotatingPDFView.h"
#include "PDFDocument.h"
#include "PDFPage.h"
#include "PDFSelection.h"
#include "PDFViewCoordinator.h"

#include <algorithm>

namespace {

bool isSame(const SpanReader::Span& a, const SpanReader::Span& b) {
    return a.content == b.content && a.start == b.start && a.end == b.end;
}

} // namespace

SelectionReader::SelectionReader(QPointer<PDFViewCoordinator> coordinator) : m_coordinator(std::move(coordinator)) {}

SelectionReader::~SelectionReader() = default;

SelectionReader::Spans SelectionReader::spans() const {
    Spans spans;
    const AnnotatingPDFView* const view = m_coordinator ? m_coordinator->pdfView() : nullptr;
    if (!view || !view->hasSelection())
        return spans;
    const std::shared_ptr<PDFDocument> document = view->document();
    for (int i = 0; i < document->pageCount(); ++i) {
        const std::shared_ptr<PDFPage> page = document->page(i);
        for (const auto& [start, end] : view->selectedRanges(*page))
            spans.push_back({page->content(), start, end});
    }
    return spans;
}

QString SelectionReader::text() const {
    if (!m_preparedSpans.empty()) {
        const Spans selected = spans();
        if (std::equal(selected.begin(), selected.end(), m_preparedSpans.begin(), m_preparedSpans.end(), isSame))
            return m_preparedText;
    }
    const AnnotatingPDFView* const view = m_coordinator ? m_coordinator->pdfView() : nullptr;
    const std::optional<PDFSelection> selection = view ? view->currentSelection() : std::nullopt;
    return selection ? selection->string() : QString();
}

QCoro::Task<void> SelectionReader::prepare() {
    const auto self = shared_from_this();
    Spans selected = spans();
    m_preparedSpans.clear();
    if (SpanReader::isShort(selected))
        co_return;
    // Named, because GCC 12 destroys a closure twice that is made within a co_await expression.
    std::function<QString()> work = [selected, stop = m_ahead.stopToken()] { return SpanReader::read(selected, stop); };
    const auto text = co_await m_ahead.read(std::move(work));
    if (!text)
        co_return;
    m_preparedText = *text;
    m_preparedSpans = std::move(selected);
}
