#include "FormFieldUndo.h"

#include "AnnotatingPDFView.h"
#include "PDFAnnotation.h"
#include "PDFFormField.h"
#include "PDFPage.h"
#include "UndoManager.h"

#include <QPointer>

namespace {

/// The page is the target, as it is for other changes of its annotations.
void registerValue(UndoManager* undoManager, const QPointer<AnnotatingPDFView>& view,
                   const std::shared_ptr<PDFAnnotation>& widget, const QStringList& value) {
    const std::shared_ptr<PDFPage> page = widget->page();
    if (!page)
        return;
    undoManager->registerUndo(page, [undoManager, view, widget, value] {
        auto field = PDFFormField::of(widget);
        if (!field)
            return;
        const QStringList present = field->value();
        field->setValue(value);
        registerValue(undoManager, view, widget, present);
        if (view)
            view->reveal(*widget);
    });
}

} // namespace

void FormFieldUndo::registerFilling(AnnotatingPDFView& view, const PDFFormField& field, const QStringList& before) {
    if (const auto undoManager = view.docUndoManager())
        registerValue(undoManager.get(), &view, field.widget(), before);
}
