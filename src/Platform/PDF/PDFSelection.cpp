#include "PDFSelection.h"

#include "FlowingText.h"
#include "PDFPage.h"
#include "PageText.h"

#include <algorithm>

PDFSelection::PDFSelection(std::vector<Range> ranges) : m_ranges(std::move(ranges)) {
    m_ranges.erase(std::remove_if(m_ranges.begin(), m_ranges.end(),
                                  [](const Range& range) { return !range.page || range.end <= range.start; }),
                   m_ranges.end());
}

QString PDFSelection::string() const {
    QString text;
    for (const Range& range : m_ranges) {
        if (!text.isEmpty())
            text += QLatin1Char('\n');
        text += FlowingText(*range.page->text(), range.start, range.end).string();
    }
    return text;
}

std::vector<std::shared_ptr<PDFPage>> PDFSelection::pages() const {
    std::vector<std::shared_ptr<PDFPage>> pages;
    for (const Range& range : m_ranges)
        if (std::find(pages.begin(), pages.end(), range.page) == pages.end())
            pages.push_back(range.page);
    return pages;
}

QRectF PDFSelection::bounds(const PDFPage& page) const {
    QRectF bounds;
    for (const QRectF& rect : lineRects(page))
        bounds = bounds.isNull() ? rect : bounds.united(rect);
    return bounds;
}

template <typename Found>
std::vector<Found> PDFSelection::collect(const PDFPage& page,
                                         std::vector<Found> (PageText::*look)(int, int) const) const {
    std::vector<Found> all;
    for (const Range& range : m_ranges) {
        if (range.page.get() != &page)
            continue;
        const std::vector<Found> found = (*page.text().*look)(range.start, range.end);
        all.insert(all.end(), found.begin(), found.end());
    }
    return all;
}

std::vector<QRectF> PDFSelection::lineRects(const PDFPage& page) const {
    return collect(page, &PageText::lineRects);
}

std::vector<PDFQuad> PDFSelection::lineQuads(const PDFPage& page) const {
    return collect(page, &PageText::lineQuads);
}

std::vector<PDFSelection> PDFSelection::selectionsByLine() const {
    std::vector<PDFSelection> lines;
    for (const Range& range : m_ranges) {
        const std::shared_ptr<const PageText> text = range.page->text();
        for (int i = std::max(0, text->lineAt(range.start)); i < int(text->lines.size()); ++i) {
            const PageText::Line& line = text->lines[std::size_t(i)];
            if (line.start >= range.end)
                break;
            const int start = std::max(range.start, line.start);
            const int end = std::min(range.end, line.end);
            if (end > start && !QStringView(text->string).mid(start, end - start).trimmed().isEmpty())
                lines.push_back(PDFSelection({{range.page, start, end}}));
        }
    }
    return lines;
}
