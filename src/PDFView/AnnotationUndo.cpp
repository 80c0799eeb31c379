#include "AnnotationUndo.h"

#include "PDFAnnotation.h"
#include "PDFPage.h"
#include "UndoManager.h"

// The page is the target of each registration: it outlives the view, and changes to a page that nobody holds any more
// need no undo. The handler belongs to the undo manager, which is therefore alive when it runs.

void AnnotationUndo::registerAdding(UndoManager* undoManager, const std::shared_ptr<PDFPage>& page,
                                    const std::shared_ptr<PDFAnnotation>& annotation) {
    if (!undoManager)
        return;
    undoManager->registerUndo(page, [undoManager, weakPage = std::weak_ptr(page), annotation] {
        const auto target = weakPage.lock();
        const int index = target->removeAnnotation(annotation);
        if (index >= 0)
            registerRemoving(undoManager, target, annotation, index);
    });
}

void AnnotationUndo::registerRemoving(UndoManager* undoManager, const std::shared_ptr<PDFPage>& page,
                                      const std::shared_ptr<PDFAnnotation>& annotation, int index) {
    if (!undoManager)
        return;
    undoManager->registerUndo(page, [undoManager, weakPage = std::weak_ptr(page), annotation, index] {
        const auto target = weakPage.lock();
        target->insertAnnotation(annotation, index);
        registerAdding(undoManager, target, annotation);
    });
}

void AnnotationUndo::registerMoving(UndoManager* undoManager, const std::shared_ptr<PDFAnnotation>& annotation,
                                    const QRectF& before) {
    if (!undoManager)
        return;
    undoManager->registerUndo(annotation, [undoManager, weakTarget = std::weak_ptr(annotation), before] {
        const auto target = weakTarget.lock();
        const QRectF now = target->bounds();
        target->setBounds(before);
        registerMoving(undoManager, target, now);
    });
}
