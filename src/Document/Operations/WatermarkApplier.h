#pragma once

#include <QString>

class PDFEditorDocument;
class UndoManager;

/// Stamps words across the middle of every page, as an annotation that covers what is seen of it.
namespace WatermarkApplier {

/// One undo step, which takes all of them away and brings them back once more; after that redo there is deliberately no
/// way back. Tells `objectWillChange` and empties the `ThumbnailCache`. A document without pages stays as it is.
/// `opacity` from 0 to 1. Main thread only.
void apply(const QString& text, double opacity, PDFEditorDocument& document, UndoManager* undoManager);

} // namespace WatermarkApplier
