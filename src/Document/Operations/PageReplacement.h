#pragma once

#include <memory>
#include <vector>

class PDFEditorDocument;
class PDFPage;
class UndoManager;

/// A page that takes the place of another, made from its picture (`PDFPage::fromImage`).
struct PageReplacement {
    int index = 0; ///< of both, zero-based
    std::shared_ptr<PDFPage> original;
    std::shared_ptr<PDFPage> replacement;

    /// Replaces all of them in one step, empties the `ThumbnailCache` and tells `objectWillChange`. Undo brings the
    /// originals back, and redo the replacements once more; after that redo there is deliberately no way back. Main
    /// thread.
    static void apply(std::vector<PageReplacement> replacements, PDFEditorDocument& document, UndoManager* undoManager);
};
