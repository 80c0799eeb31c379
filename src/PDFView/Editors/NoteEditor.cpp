#include "NoteEditor.h"

#include "AnnotatingPDFView.h"
#include "AnnotationFont.h"
#include "AnnotationUndo.h"
#include "InlineFreeTextEditor.h"
#include "NoteAnnotation.h"
#include "PDFDraft.h"
#include "PDFPage.h"
#include "UndoManager.h"

/// Points, as on the page.
static constexpr double fontSize = 13;
/// Device-independent pixels.
static constexpr QPointF textInset(10, 13);

NoteEditor::NoteEditor(AnnotatingPDFView& view) : AnnotationEditor(view) {}

NoteEditor::~NoteEditor() = default;

void NoteEditor::start(const std::shared_ptr<NoteAnnotation>& note, const std::shared_ptr<PDFPage>& page, bool isNew) {
    commitAllEditors();
    if (!note || !page || note->page() != page)
        return; // what was committed may have been a new note without text, and this very one
    m_note = note;
    m_isNew = isNew;

    InlineFreeTextEditor& paper = open(page, QStringLiteral("noteEditor"), QStringLiteral("Note"));
    paper.setFont(
        InlineFreeTextEditor::screenFont(platformFont(AnnotationFont::marker, fontSize, QFont::Medium), 1, view()));
    paper.setColors(NoteAnnotation::ink, NoteAnnotation::paperCream);
    paper.borderColor = NoteAnnotation::ink;
    paper.setPlainText(note->contents());
    show();
    paper.selectAll();
}

void NoteEditor::layOut() {
    editor()->place(view().convertFromPage(m_note->paperRect(), *page()), textInset);
}

bool NoteEditor::isSubjectThere() const {
    return m_note->page() == page();
}

void NoteEditor::close() {
    AnnotationEditor::close();
    m_note.reset();
}

void NoteEditor::addOpenTo(PDFDraft& draft) const {
    const QString text = editor()->typedText().trimmed();
    if (text.isEmpty() ? !m_isNew : text == m_note->contents())
        return;
    const std::shared_ptr<PDFAnnotation> drafted = text.isEmpty() ? nullptr : m_note->copy();
    if (drafted)
        drafted->setContents(text);
    draft.changes.push_back({page(), m_note, drafted});
}

void NoteEditor::commit() {
    if (!canCommit())
        return;
    const QString text = editor()->finishedText().trimmed();
    const std::shared_ptr<NoteAnnotation> note = m_note;
    const std::shared_ptr<PDFPage> target = page();
    close();
    if (text.isEmpty()) {
        if (m_isNew)
            removeNote(note, target);
        return;
    }
    if (text == note->contents())
        return;
    note->setContents(text);
    // That a new note is there counts as a change already, for as long as that isn't undone.
    if (const auto undoManager = view().docUndoManager(); undoManager && !m_isNew)
        undoManager->markEdited();
}

void NoteEditor::cancel() {
    if (!canCommit())
        return;
    const std::shared_ptr<NoteAnnotation> note = m_note;
    const std::shared_ptr<PDFPage> target = page();
    close();
    if (m_isNew)
        removeNote(note, target);
}

void NoteEditor::removeNote(const std::shared_ptr<NoteAnnotation>& note, const std::shared_ptr<PDFPage>& page) {
    const int index = page->removeAnnotation(note);
    AnnotationUndo::registerRemoving(view().docUndoManager().get(), page, note, index);
}
