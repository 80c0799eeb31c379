#pragma once

#include "PageReplacement.h"

#include <QRectF>

#include <vector>

class PDFDocument;

/// Burns what redaction markers cover: a page with markers is replaced by a picture of itself with black boxes in their
/// places, so that nothing of its text is left. Main thread only.
namespace RedactionApplier {

/// Pixels for a unit of page coordinates: 216 dots per inch.
inline constexpr double renderScale = 3.0;

/// What the page's markers cover, those too that came back from a file as plain annotations; in page coordinates.
[[nodiscard]] std::vector<QRectF> pendingBoxes(const PDFPage& page);

/// True when a page whose annotations are known has markers.
[[nodiscard]] bool arePending(const PDFDocument& document);

/// Replaces every page with markers and returns how many these were. A page that can't be drawn keeps its text and its
/// markers. One undo step; none when nothing was replaced.
int apply(PDFEditorDocument& document, UndoManager* undoManager);

/// The same in steps, a page each, for many pages. The document must not change before the end.
class Run {
public:
    /// Looks for the markers on all pages.
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
