#include "AnnotatingPDFView.h"

#include "AnnotationUndo.h"
#include "MarkupAction.h"
#include "PDFAnnotation.h"
#include "PDFDocument.h"
#include "PDFPage.h"
#include "PDFSelection.h"
#include "Palette.h"
#include "QuilloAssert.h"
#include "ToolState.h"
#include "UndoManager.h"

#include <QAction>
#include <QCursor>
#include <QEvent>
#include <QMenu>

AnnotatingPDFView::AnnotatingPDFView(QWidget* parent) : PDFView(parent) {}

AnnotatingPDFView::~AnnotatingPDFView() = default;

void AnnotatingPDFView::setToolState(const std::shared_ptr<ToolState>& toolState) {
    m_toolState = toolState;
}

void AnnotatingPDFView::setDocUndoManager(const std::shared_ptr<UndoManager>& undoManager) {
    m_docUndoManager = undoManager;
}

bool AnnotatingPDFView::applyMarkup(const QString& subtype) {
    const std::optional<PDFSelection> selection = currentSelection();
    const std::vector<PDFSelection> lines = selection ? selection->selectionsByLine() : std::vector<PDFSelection>();
    if (lines.empty())
        return false;
    QUILLO_ASSERT(m_toolState, "Markup has its colour from the tool state.");
    const QColor color = m_toolState->color();

    for (const PDFSelection& line : lines) {
        const auto pages = line.pages();
        const QRectF bounds = pages.empty() ? QRectF() : line.bounds(*pages.front());
        if (!(bounds.width() > 0 && bounds.height() > 0))
            continue;
        const auto annotation = std::make_shared<PDFAnnotation>(bounds, subtype);
        annotation->setColor(color);
        pages.front()->addAnnotation(annotation);
        AnnotationUndo::registerAdding(m_docUndoManager.get(), pages.front(), annotation);
    }
    clearSelection();
    return true;
}

void AnnotatingPDFView::refreshToolCursor() {
    if (viewport()->underMouse())
        updateCursor(viewport()->mapFromGlobal(QPointF(QCursor::pos())));
}

/// All of a long document counts as text without being read: that would hold up the menu.
bool AnnotatingPDFView::hasSelectedText() const {
    constexpr int quicklyReadPages = 64;
    return hasSelection() && (document()->pageCount() > quicklyReadPages || currentSelection());
}

std::unique_ptr<QMenu> AnnotatingPDFView::menu(QPointF viewPoint) {
    return m_toolState && hasSelectedText() ? buildSelectionMenu() : PDFView::menu(viewPoint);
}

std::unique_ptr<QMenu> AnnotatingPDFView::buildSelectionMenu() {
    auto menu = std::make_unique<QMenu>(this);
    menu->setObjectName(u"selectionMenu"_qs);
    menu->setAccessibleName(u"Selected text"_qs);
    for (const MarkupActionInfo& row : allMarkupActions()) {
        QAction* const action = menu->addAction(row.title);
        action->setObjectName(row.rawValue);
        connect(action, &QAction::triggered, this, [this, subtype = row.subtype] { applyMarkup(subtype); });
    }
    menu->addSeparator();
    menu->addAction(action(PDFViewCommand::copy));
    return menu;
}

void AnnotatingPDFView::changeEvent(QEvent* event) {
    PDFView::changeEvent(event);
    if (event->type() == QEvent::PaletteChange)
        setBackgroundColor(Palette::appTint(palette()));
}
