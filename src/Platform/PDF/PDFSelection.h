#pragma once

#include "PDFTypes.h"

#include <QString>

#include <memory>
#include <vector>

class PDFPage;
class PageText;

/// Some text of a document: ranges of characters on pages, in page order. A value with shared pages; main thread only.
class PDFSelection {
public:
    struct Range {
        std::shared_ptr<PDFPage> page;
        int start = 0; ///< offset into the string of `PDFPage::text`
        int end = 0;   ///< one past the last offset; never below start
        bool operator==(const Range&) const = default;
    };

    PDFSelection() = default;
    explicit PDFSelection(std::vector<Range> ranges);

    [[nodiscard]] const std::vector<Range>& ranges() const { return m_ranges; }
    [[nodiscard]] bool isEmpty() const { return m_ranges.empty(); }

    /// The selected text as it was typed, words over line ends whole (`FlowingText`); ranges are joined with a newline.
    [[nodiscard]] QString string() const;

    /// The pages with selected text, each once, in order.
    [[nodiscard]] std::vector<std::shared_ptr<PDFPage>> pages() const;

    /// The box around the selected glyphs on `page`, page coordinates; empty when nothing is selected there.
    [[nodiscard]] QRectF bounds(const PDFPage& page) const;

    /// One rectangle for each line touched on `page`, page coordinates, for painting.
    [[nodiscard]] std::vector<QRectF> lineRects(const PDFPage& page) const;

    /// Quadrilaterals along the direction of each line, for marking the text: as high as each line's own font, and
    /// those of neighbouring lines don't overlap.
    [[nodiscard]] std::vector<PDFQuad> lineQuads(const PDFPage& page) const;

    /// One selection for each line of text, in order. Lines of white space alone are left out.
    [[nodiscard]] std::vector<PDFSelection> selectionsByLine() const;

    bool operator==(const PDFSelection&) const = default;

private:
    /// What `look` finds on the page for the ranges of it, one after the other.
    template <typename Found>
    std::vector<Found> collect(const PDFPage& page, std::vector<Found> (PageText::*look)(int, int) const) const;

    std::vector<Range> m_ranges; // without empty ranges
};
