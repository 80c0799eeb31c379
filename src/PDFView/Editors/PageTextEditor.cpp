#include "PageTextEditor.h"

#include "AnnotatingPDFView.h"
#include "AnnotationFont.h"
#include "FreeTextAnnotation.h"
#include "InlineFreeTextEditor.h"
#include "PDFDraft.h"
#include "PDFPage.h"
#include "PDFSelection.h"
#include "PageBackground.h"
#include "TextCoverAnnotation.h"
#include "UndoManager.h"

#include <algorithm>
#include <limits>

/// By which the cover is larger than the line on each side, points.
static constexpr double coverMargin = 2;
/// What an editor needs in height beyond one line of its font, points.
static constexpr double lineMargin = 8;
/// Device-independent pixels.
static constexpr double minimumWidth = 80;
/// Points, as in the annotation.
static constexpr QPointF pageTextInset(6, 4);
/// For a line whose font isn't known, in points: this part of its height within these limits.
static constexpr double fallbackFontPart = 0.8;
static constexpr double fallbackFontMinimum = 9;
static constexpr double fallbackFontMaximum = 72;

namespace {

void takeOffPage(const std::shared_ptr<TextCoverAnnotation>& cover) {
    if (const auto page = cover->page())
        page->removeAnnotation(cover);
}

// Undo and redo of an edit, which register each other. The page is their target, as it is for single annotations.

struct TextEdit {
    std::shared_ptr<TextCoverAnnotation> cover;
    std::shared_ptr<FreeTextAnnotation> replacement;
};

void removeTextEdit(UndoManager* undoManager, const std::shared_ptr<PDFPage>& page, const TextEdit& edit);

void registerRemoval(UndoManager* undoManager, const std::shared_ptr<PDFPage>& page, const TextEdit& edit) {
    if (undoManager)
        undoManager->registerUndo(page, [undoManager, weakPage = std::weak_ptr(page), edit] {
            removeTextEdit(undoManager, weakPage.lock(), edit);
        });
}

void placeTextEdit(UndoManager* undoManager, const std::shared_ptr<PDFPage>& page, const TextEdit& edit) {
    page->addAnnotation(edit.cover);
    page->addAnnotation(edit.replacement);
    registerRemoval(undoManager, page, edit);
}

void removeTextEdit(UndoManager* undoManager, const std::shared_ptr<PDFPage>& page, const TextEdit& edit) {
    page->removeAnnotation(edit.cover);
    page->removeAnnotation(edit.replacement);
    undoManager->registerUndo(page, [undoManager, weakPage = std::weak_ptr(page), edit] {
        placeTextEdit(undoManager, weakPage.lock(), edit);
    });
}

} // namespace

PageTextEditor::PageTextEditor(AnnotatingPDFView& view) : AnnotationEditor(view) {}

PageTextEditor::~PageTextEditor() {
    if (m_cover)
        takeOffPage(m_cover);
}

double PageTextEditor::fallbackFontSize(double lineHeight) {
    return std::clamp(lineHeight * fallbackFontPart, fallbackFontMinimum, fallbackFontMaximum);
}

void PageTextEditor::begin(QPointF viewPoint) {
    const std::shared_ptr<PDFPage> page = view().pageAt(viewPoint, false);
    const auto line = page ? page->selectionForLine(view().convertToPage(viewPoint, *page)) : std::nullopt;
    const QString text = line ? line->string() : QString();
    if (!text.trimmed().isEmpty())
        start(line->bounds(*page), text, page);
}

void PageTextEditor::start(const QRectF& lineBounds, const QString& lineText, const std::shared_ptr<PDFPage>& page) {
    commitAllEditors();
    const auto found = page->font(lineText);
    const QTransform toSeen = page->displayTransform(view().displayBox());
    const QRectF seen = toSeen.mapRect(lineBounds);
    m_pageFont = found ? *found : platformFont(AnnotationFont::system, fallbackFontSize(seen.height()));
    const QFont unscaled = InlineFreeTextEditor::screenFont(m_pageFont, 1, view());
    const double height =
        std::max(InlineFreeTextEditor::defaultLineHeight(unscaled, view()) + lineMargin, seen.height());
    const QRectF covered =
        toSeen.inverted().mapRect(QRectF(seen.left(), seen.center().y() - height / 2, seen.width(), height)
                                      .adjusted(-coverMargin, -coverMargin, coverMargin, coverMargin));
    m_foreground = PageBackground::contrastingTextColor(PageBackground::sampleBackgroundColor(covered, *page));
    m_cover = std::make_shared<TextCoverAnnotation>(covered);
    page->addAnnotation(m_cover);

    InlineFreeTextEditor& line = open(page, QStringLiteral("pageTextEditor"), QStringLiteral("Line of text"));
    line.setColors(m_foreground, Qt::transparent);
    line.setPlainText(lineText);
    line.document()->setModified(false);
    connect(&line, &QTextEdit::textChanged, this, &PageTextEditor::layOut);
    show();
    line.selectAll();
}

/// The cover's bounds as far as they suffice: a longer line goes on to the right, as far as the page does, and then
/// downwards.
QRectF PageTextEditor::boundsFor(const QString& text) const {
    const QTransform toSeen = page()->displayTransform(view().displayBox());
    QRectF seen = toSeen.mapRect(m_cover->bounds());
    const double room = page()->displaySize(view().displayBox()).width() - seen.left();
    constexpr double slack = 2; // which the edges of the editor lose when they are put on pixels
    const double unbroken =
        FreeTextAnnotation::boxFor(text, m_pageFont, std::numeric_limits<double>::infinity()).width() + slack;
    seen.setWidth(std::max(seen.width(), std::min(unbroken, room)));
    const double height = FreeTextAnnotation::boxFor(text, m_pageFont, seen.width()).height();
    seen.setHeight(std::max(seen.height(), height));
    return toSeen.inverted().mapRect(seen);
}

void PageTextEditor::layOut() {
    const double scale = view().scaleFactor();
    QRectF frame = view().convertFromPage(boundsFor(editor()->toPlainText()), *page());
    frame.setWidth(std::max(frame.width(), minimumWidth));
    editor()->setFont(InlineFreeTextEditor::screenFont(m_pageFont, scale, view()));
    editor()->place(frame, pageTextInset * scale);
}

bool PageTextEditor::isSubjectThere() const {
    return m_cover->page() == page();
}

void PageTextEditor::close() {
    AnnotationEditor::close();
    m_cover.reset();
}

/// The page may come back by an undo: without the cover.
void PageTextEditor::abandon() {
    cancel();
}

void PageTextEditor::cancel() {
    if (!m_cover)
        return;
    const std::shared_ptr<TextCoverAnnotation> cover = m_cover;
    close();
    takeOffPage(cover);
}

std::shared_ptr<FreeTextAnnotation> PageTextEditor::replacement(const QString& text) const {
    auto made = std::make_shared<FreeTextAnnotation>(boundsFor(text));
    made->setContents(text);
    made->setFont(m_pageFont);
    made->setFontColor(m_foreground);
    made->setColor(QColor(Qt::transparent));
    return made;
}

/// A line that wasn't touched leaves nothing: opening it is no change yet, though committing it is one.
void PageTextEditor::addOpenTo(PDFDraft& draft) const {
    const QString text = editor()->typedText().trimmed();
    if (text.isEmpty() || !editor()->document()->isModified())
        draft.changes.push_back({page(), m_cover, nullptr});
    else
        draft.changes.push_back({page(), nullptr, replacement(text)});
}

void PageTextEditor::commit() {
    if (!canCommit())
        return;
    const QString text = editor()->finishedText().trimmed();
    if (text.isEmpty()) {
        cancel();
        return;
    }
    const std::shared_ptr<PDFPage> target = page();
    const TextEdit edit{m_cover, replacement(text)};
    close();
    target->addAnnotation(edit.replacement);
    registerRemoval(view().docUndoManager().get(), target, edit);
}
