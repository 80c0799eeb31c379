#pragma once

#include "PageReplacement.h"

#include <QRectF>

#include <memory>
#include <stop_token>
#include <vector>

class PDFDocument;
class PDFSource;

/// Burns what redaction markers cover: a page with markers is replaced by a picture of itself with black boxes in their
/// places, so that nothing of its text is left. Main thread only, except where told.
namespace RedactionApplier {

/// Pixels for a unit of page coordinates: 216 dots per inch.
inline constexpr double renderScale = 3.0;

/// What the page's markers cover, those too that came back from a file as plain annotations; in page coordinates.
[[nodiscard]] std::vector<QRectF> pendingBoxes(const PDFPage& page);

/// The pages with markers, zero-based and ascending. Files of the document that weren't searched for markers yet are
/// searched first.
[[nodiscard]] std::vector<int> markedPages(const PDFDocument& document);

/// The files of the document that weren't searched for markers yet.
[[nodiscard]] std::vector<std::shared_ptr<PDFSource>> unsearchedFiles(const PDFDocument& document);
/// Looks for markers in all pages of a file, unless that was done, so that later nobody waits for it. Any thread; ends
/// early, with nothing done, once `stop` is requested.
void search(const PDFSource& file, const std::stop_token& stop);

/// Replaces every page with markers and returns how many these were. A page that can't be drawn keeps its text and its
/// markers. One undo step; none when nothing was replaced.
int apply(PDFEditorDocument& document, UndoManager* undoManager);

/// The same in steps, a page each, for many pages. The document must not change before the end.
class Run {
public:
    /// Finds the pages as `markedPages` does.
    explicit Run(PDFEditorDocument& document);
    [[nodiscard]] int pageCount() const { return static_cast<int>(m_marked.size()); }
    [[nodiscard]] int pagesDrawn() const { return m_drawn; }
    /// Draws the next page; false, and nothing happens, when all are drawn.
    bool drawNext();
    /// Replaces those that were drawn, once, and returns how many these were.
    int finish(UndoManager* undoManager);

private:
    PDFEditorDocument& m_document;
    std::vector<int> m_marked; ///< zero-based
    int m_drawn = 0;
    std::vector<PageReplacement> m_replacements;
};

} // namespace RedactionApplier
