#include "AnnotatingPDFView.h"

#include "AnnotationUndo.h"
#include "Eraser.h"
#include "EraserCursorOverlay.h"
#include "FormFieldUndo.h"
#include "MarkupAction.h"
#include "NoteAnnotation.h"
#include "NoteDrag.h"
#include "NoteEditor.h"
#include "PDFDocument.h"
#include "PDFPage.h"
#include "PDFSelection.h"
#include "PageTextEditor.h"
#include "Palette.h"
#include "QuilloAssert.h"
#include "RedactionMarkerAnnotation.h"
#include "ShapeGesture.h"
#include "SignaturePlacement.h"
#include "TextBoxEditor.h"
#include "TextCoverAnnotation.h"
#include "ToolState.h"
#include "UndoManager.h"

#include <QApplication>
#include <QMouseEvent>

#include <algorithm>
#include <cstddef>
#include <iterator>
#include <utility>

// Points, on the page as it is seen.
static constexpr QSizeF noteSize{120, 80};
static constexpr double noteMargin = 20;

namespace {

struct MarkedLine {
    std::shared_ptr<PDFPage> page;
    PDFQuad quad;
};

/// Whether one stands within the length and the height of the other.
bool liesWithin(const PDFQuad& part, const PDFQuad& whole) {
    const auto place = [&whole](QPointF point, QPointF end) {
        const QPointF axis = end - whole.lowerLeft;
        return QPointF::dotProduct(point - whole.lowerLeft, axis) / QPointF::dotProduct(axis, axis);
    };
    const double halfway = place((part.lowerLeft + part.upperRight) / 2, whole.upperLeft);
    constexpr double rounding = 1e-6;
    return halfway > 0 && halfway < 1 && place(part.lowerLeft, whole.lowerRight) > -rounding &&
           place(part.lowerRight, whole.lowerRight) < 1 + rounding;
}

/// Whether another one marks it already: an exponent that the page has as a line of its own, or a text that it shows
/// twice at one place. Marked again it would be darker.
bool isCovered(const std::vector<MarkedLine>& marked, std::size_t index) {
    const MarkedLine& line = marked[index];
    // The lines of a page follow one another; those of the other pages, of which there may be thousands, don't matter.
    const auto isOfAnother = [&line](const MarkedLine& other) { return other.page != line.page; };
    const auto here = marked.begin() + std::ptrdiff_t(index);
    const auto first = std::find_if(std::make_reverse_iterator(here), marked.rend(), isOfAnother).base();
    const auto last = std::find_if(here, marked.end(), isOfAnother);
    return std::any_of(first, here, [&](const MarkedLine& other) { return liesWithin(line.quad, other.quad); }) ||
           std::any_of(here + 1, last, [&](const MarkedLine& other) {
               return liesWithin(line.quad, other.quad) && !liesWithin(other.quad, line.quad);
           });
}

} // namespace

AnnotatingPDFView::AnnotatingPDFView(QWidget* parent)
    : PDFView(parent), m_shape(std::make_unique<ShapeGesture>(*this)),
      m_signature(std::make_unique<SignaturePlacement>(*this)), m_noteDrag(std::make_unique<NoteDrag>(*this)),
      m_eraser(std::make_unique<Eraser>(*this)), m_textBoxEditor(std::make_unique<TextBoxEditor>(*this)),
      m_noteEditor(std::make_unique<NoteEditor>(*this)), m_pageTextEditor(std::make_unique<PageTextEditor>(*this)),
      m_eraserOverlay(new EraserCursorOverlay(viewport())) {
    viewport()->setTabletTracking(true);
    connect(this, &PDFView::scaleChanged, this, [this] { updateEraserVisual(m_lastMouseViewPoint); });
    for (const PlacedEditor* const editor :
         {static_cast<PlacedEditor*>(m_textBoxEditor.get()), static_cast<PlacedEditor*>(m_noteEditor.get()),
          static_cast<PlacedEditor*>(m_pageTextEditor.get())})
        connect(editor, &PlacedEditor::openChanged, this, [this] { Q_EMIT editingTextChanged(isEditingText()); });
    for (const PlacedEditor* const editor : findChildren<PlacedEditor*>(QString(), Qt::FindDirectChildrenOnly))
        connect(editor, &PlacedEditor::typed, this, &AnnotatingPDFView::typed);
    connect(this, &PDFView::fillingChanged, this, [this] { Q_EMIT editingTextChanged(isEditingText()); });
    connect(this, &PDFView::formFieldChanged, this, [this](const PDFFormField& field, const QStringList& before) {
        FormFieldUndo::registerFilling(*this, field, before);
    });
}

AnnotatingPDFView::~AnnotatingPDFView() {
    m_closing.request_stop();
}

void AnnotatingPDFView::setToolState(const std::shared_ptr<ToolState>& toolState) {
    if (toolState == m_toolState)
        return;
    if (m_toolState)
        m_toolState->disconnect(this);
    finishGestures();
    m_toolState = toolState;
    updateFilling();
    if (!m_toolState)
        return;
    connect(m_toolState.get(), &ToolState::toolChanged, this, [this] {
        finishGestures();
        updateFilling();
        refreshToolCursor();
    });
    connect(m_toolState.get(), &ToolState::textEditingModeEnabledChanged, this, &AnnotatingPDFView::updateFilling);
    connect(m_toolState.get(), &ToolState::eraserSizeChanged, this, &AnnotatingPDFView::refreshToolCursor);
}

void AnnotatingPDFView::setDocUndoManager(const std::shared_ptr<UndoManager>& undoManager) {
    m_eraser->finish();
    m_docUndoManager = undoManager;
}

/// Form fields and what annotations say react to the tool that selects.
void AnnotatingPDFView::updateFilling() {
    const bool selects =
        !m_toolState || (m_toolState->tool() == AnnotationTool::select && !m_toolState->isTextEditingModeEnabled());
    setFillsForms(selects);
    setReadsRemarks(selects);
}

bool AnnotatingPDFView::showsRemark(const PDFAnnotation& annotation) const {
    return annotation.contents() != RedactionMarkerAnnotation::marker &&
           !dynamic_cast<const TextCoverAnnotation*>(&annotation);
}

void AnnotatingPDFView::commitEditors() {
    commitFilling();
    applyEditors();
}

void AnnotatingPDFView::applyEditors() {
    finishGestures();
    applyFilling();
    m_textBoxEditor->commit();
    m_noteEditor->commit();
    m_pageTextEditor->commit();
}

bool AnnotatingPDFView::isEditingText() const {
    return m_textBoxEditor->isOpen() || m_noteEditor->isOpen() || m_pageTextEditor->isOpen() || isFilling();
}

bool AnnotatingPDFView::applyMarkup(const QString& subtype) {
    const std::optional<PDFSelection> selection = currentSelection();
    const std::vector<PDFSelection> lines = selection ? selection->selectionsByLine() : std::vector<PDFSelection>();
    if (lines.empty())
        return false;
    QUILLO_ASSERT(m_toolState, "Markup has its colour from the tool state.");
    const QColor color = m_toolState->color();

    std::vector<MarkedLine> marked;
    for (const PDFSelection& line : lines)
        for (const std::shared_ptr<PDFPage>& page : line.pages())
            for (const PDFQuad& quad : line.lineQuads(*page))
                marked.push_back({page, quad});
    for (std::size_t i = 0; i < marked.size(); ++i) {
        const auto& [page, quad] = marked[i];
        if (quad.boundingRect().isEmpty() || isCovered(marked, i))
            continue;
        const auto annotation = std::make_shared<PDFAnnotation>(quad.boundingRect(), subtype);
        annotation->setQuadrilateralPoints({quad});
        annotation->setColor(color);
        page->addAnnotation(annotation);
        AnnotationUndo::registerAdding(m_docUndoManager.get(), page, annotation);
    }
    clearSelection();
    return true;
}

void AnnotatingPDFView::addProgrammaticNote(const QString& text, const std::shared_ptr<PDFPage>& page) {
    QUILLO_ASSERT(m_toolState, "A note has its colour from the tool state.");
    const QPointF corner(page->displaySize(displayBox()).width() - noteSize.width() - noteMargin, noteMargin);
    const auto note = std::make_shared<NoteAnnotation>(
        page->displayTransform(displayBox()).inverted().mapRect(QRectF(corner, noteSize)));
    note->setColor(m_toolState->color());
    note->setContents(text);
    page->addAnnotation(note);
    AnnotationUndo::registerAdding(m_docUndoManager.get(), page, note);
}

void AnnotatingPDFView::addNote(QPointF viewPoint) {
    const std::shared_ptr<PDFPage> page = pageAt(viewPoint, true);
    if (!page)
        return;
    const QTransform toSeen = page->displayTransform(displayBox());
    QRectF seen(QPointF(), noteSize);
    seen.moveCenter(toSeen.map(convertToPage(viewPoint, *page)));
    const auto note = std::make_shared<NoteAnnotation>(toSeen.inverted().mapRect(seen));
    note->setColor(m_toolState->color());
    page->addAnnotation(note);
    AnnotationUndo::registerAdding(m_docUndoManager.get(), page, note);
    m_noteEditor->start(note, page, true);
}

void AnnotatingPDFView::applyStickyMarkupIfNeeded() {
    if (m_toolState && m_toolState->activeMarkupMode() && m_toolState->tool() == AnnotationTool::select)
        applyMarkup(info(*m_toolState->activeMarkupMode()).subtype);
}

void AnnotatingPDFView::finishGestures() {
    m_shape->finish();
    m_signature->finish();
    m_noteDrag->finish();
    m_eraser->finish();
}

bool AnnotatingPDFView::cancelOperation() {
    m_shape->cancel();
    m_signature->cancel();
    m_noteDrag->cancel();
    m_eraser->finish();
    if (!m_toolState || m_toolState->tool() == AnnotationTool::select)
        return PDFView::cancelOperation();
    m_toolState->setTool(AnnotationTool::select);
    m_toolState->setActiveMarkupMode(std::nullopt);
    m_toolState->setTextEditingModeEnabled(false);
    return true;
}

void AnnotatingPDFView::showEvent(QShowEvent* event) {
    PDFView::showEvent(event);
    if (!std::exchange(m_watchesForStickyMarkup, true))
        qApp->installEventFilter(this);
}

/// Every release of the left button in the program's windows ends what may have been a selection of text. That a pen is
/// taken away is told to the program alone.
bool AnnotatingPDFView::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() == QEvent::MouseButtonRelease && watched->isWidgetType() &&
        static_cast<QMouseEvent*>(event)->button() == Qt::LeftButton)
        applyStickyMarkupIfNeeded();
    if (event->type() == QEvent::TabletLeaveProximity && std::exchange(m_penErases, false)) {
        m_eraser->finish();
        updateEraserVisual(m_lastMouseViewPoint = std::nullopt);
    }
    return PDFView::eventFilter(watched, event);
}

void AnnotatingPDFView::changeEvent(QEvent* event) {
    PDFView::changeEvent(event);
    if (event->type() == QEvent::PaletteChange)
        setBackgroundColor(Palette::appTint(palette()));
}
