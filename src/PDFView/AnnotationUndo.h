#pragma once

#include <QRectF>

#include <memory>

class PDFAnnotation;
class PDFPage;
class UndoManager;

/// Undo of adding, removing and moving annotations: mirrored operations that register each other, so that undo and redo
/// alternate without limit. They bring back the same objects at the same place in the drawing order. Without an undo
/// manager nothing is registered. Main thread only.
namespace AnnotationUndo {

/// To be called after `annotation` was added to `page`.
void registerAdding(UndoManager* undoManager, const std::shared_ptr<PDFPage>& page,
                    const std::shared_ptr<PDFAnnotation>& annotation);

/// To be called after `annotation` was removed from `page`, where it had the place `index`.
void registerRemoving(UndoManager* undoManager, const std::shared_ptr<PDFPage>& page,
                      const std::shared_ptr<PDFAnnotation>& annotation, int index);

/// To be called after `annotation` was moved or resized from the bounds `before`.
void registerMoving(UndoManager* undoManager, const std::shared_ptr<PDFAnnotation>& annotation, const QRectF& before);

} // namespace AnnotationUndo
