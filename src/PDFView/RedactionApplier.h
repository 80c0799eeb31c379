#pragma once

#include <QRectF>

#include <memory>
#include <vector>

class PDFDocument;
class PDFEditorDocument;
class PDFPage;
class UndoManager;

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

} // namespace RedactionApplier
