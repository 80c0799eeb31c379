#include "ViewSelection.h"

#include "PDFDocument.h"
#include "PDFPage.h"
#include "PageText.h"
#include "StopAfter.h"

#include <QClipboard>
#include <QGuiApplication>

#include <algorithm>
#include <limits>

ViewSelection::ViewSelection(QObject* parent) : QObject(parent) {}

void ViewSelection::setDocument(const std::shared_ptr<PDFDocument>& document) {
    m_document = document;
    m_reader.cancel();
    set(std::optional<PDFSelection>());
}

void ViewSelection::dropGonePages() {
    const std::shared_ptr<PDFDocument> document = m_document.lock();
    if (!document || isEmpty())
        return;
    if (m_stretch) {
        const int first = document->index(m_stretch->firstPage.get());
        const int last = document->index(m_stretch->lastPage.get());
        m_ranges.reset();
        if (first < 0 || last < first)
            set(std::optional<TextStretch>());
        return;
    }
    std::vector<PDFSelection::Range> ranges = m_ranges->ranges();
    std::erase_if(ranges, [&](const PDFSelection::Range& range) { return document->index(range.page.get()) < 0; });
    set(PDFSelection(std::move(ranges)));
}

std::optional<PDFSelection> ViewSelection::current() const {
    const std::shared_ptr<PDFDocument> document = m_document.lock();
    if (m_stretch && !m_ranges && document) {
        std::vector<PDFSelection::Range> ranges;
        const int first = document->index(m_stretch->firstPage.get());
        const int last = document->index(m_stretch->lastPage.get());
        for (int i = first; i >= 0 && i <= last; ++i) {
            const std::shared_ptr<PDFPage> page = document->page(i);
            if (!page)
                continue;
            const bool wholePage = i != last || !m_stretch->end;
            ranges.push_back({page, i == first ? m_stretch->start : 0,
                              wholePage ? static_cast<int>(page->text()->string.size()) : *m_stretch->end});
        }
        m_ranges = PDFSelection(std::move(ranges));
    }
    return m_ranges && !m_ranges->isEmpty() ? m_ranges : std::nullopt;
}

void ViewSelection::set(const std::optional<PDFSelection>& selection) {
    const std::optional<PDFSelection> wanted = selection && !selection->isEmpty() ? selection : std::nullopt;
    if (!m_stretch && m_ranges == wanted)
        return;
    m_stretch.reset();
    m_ranges = wanted;
    Q_EMIT changed();
}

void ViewSelection::set(const std::optional<TextStretch>& stretch) {
    if (m_stretch == stretch && (m_stretch || !m_ranges))
        return;
    m_stretch = stretch;
    m_ranges.reset();
    Q_EMIT changed();
}

void ViewSelection::selectAll() {
    const std::shared_ptr<PDFDocument> document = m_document.lock();
    if (document && document->pageCount() > 0)
        set(TextStretch{document->page(0), 0, document->page(document->pageCount() - 1), std::nullopt});
}

std::vector<std::pair<int, int>> ViewSelection::rangesOn(const PDFPage& page) const {
    std::vector<std::pair<int, int>> found;
    const std::shared_ptr<PDFDocument> document = m_document.lock();
    if (m_stretch && document) {
        const int index = document->index(&page);
        const int first = document->index(m_stretch->firstPage.get());
        const int last = document->index(m_stretch->lastPage.get());
        constexpr int pageEnd = std::numeric_limits<int>::max();
        if (index >= 0 && index >= first && index <= last)
            found.emplace_back(index == first ? m_stretch->start : 0,
                               index == last ? m_stretch->end.value_or(pageEnd) : pageEnd);
    } else if (m_ranges) {
        for (const PDFSelection::Range& range : m_ranges->ranges()) {
            if (range.page.get() == &page)
                found.emplace_back(range.start, range.end);
        }
    }
    return found;
}

std::vector<QRectF> ViewSelection::rects(const PDFPage& page, const PageText& text) const {
    std::vector<QRectF> rects;
    for (const auto& [start, end] : rangesOn(page)) {
        const std::vector<QRectF> lines = text.lineRects(start, end);
        rects.insert(rects.end(), lines.begin(), lines.end());
    }
    return rects;
}

std::vector<SpanReader::Span> ViewSelection::spans() const {
    std::vector<SpanReader::Span> spans;
    const std::shared_ptr<PDFDocument> document = m_document.lock();
    if (m_stretch && document) {
        const std::vector<PDFPageContent> contents = document->pageContents();
        const int first = document->index(m_stretch->firstPage.get());
        const int last = document->index(m_stretch->lastPage.get());
        for (int i = first; i >= 0 && i <= last; ++i)
            spans.push_back({contents[static_cast<std::size_t>(i)], i == first ? m_stretch->start : 0,
                             i == last ? m_stretch->end : std::nullopt});
    } else if (m_ranges) {
        for (const PDFSelection::Range& range : m_ranges->ranges())
            spans.push_back({range.page->content(), range.start, range.end});
    }
    return spans;
}

void ViewSelection::offerForMiddleButton() {
    QClipboard* clipboard = QGuiApplication::clipboard();
    const std::vector<SpanReader::Span> selected = spans();
    if (selected.empty() || !clipboard->supportsSelection() || !SpanReader::isShort(selected))
        return;
    const StopAfter patience;
    const QString text = SpanReader::read(selected, patience.token());
    if (!patience.token().stop_requested())
        clipboard->setText(text, QClipboard::Selection);
}
