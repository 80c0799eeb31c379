#include "PlacedEditor.h"

#include "AnnotatingPDFView.h"
#include "InlineFreeTextEditor.h"
#include "PDFDocument.h"
#include "PDFPage.h"
#include "QuilloAssert.h"

#include <utility>

PlacedEditor::PlacedEditor(AnnotatingPDFView& view) : m_view(view) {
    connect(&view, &PDFView::visibleAreaChanged, this, &PlacedEditor::follow);
}

PlacedEditor::~PlacedEditor() {
    if (!m_editor)
        return;
    m_editor->disconnect(this);
    m_editor->clearFocus(); // so that it isn't passed on within a viewer that may be going, too
    delete m_editor;
}

InlineFreeTextEditor* PlacedEditor::editor() const {
    return m_editor;
}

void PlacedEditor::endOthers() {
    commit();
    const auto others = m_view.viewport()->findChildren<InlineFreeTextEditor*>(QString(), Qt::FindDirectChildrenOnly);
    for (InlineFreeTextEditor* const other : others)
        other->endEditing();
}

InlineFreeTextEditor& PlacedEditor::open(const std::shared_ptr<PDFPage>& page, const QString& objectName,
                                         const QString& accessibleName) {
    QUILLO_ASSERT(page && !m_editor, "an editor is opened on a page, after its predecessor is closed");
    m_page = page;
    m_editor = new InlineFreeTextEditor(m_view.viewport());
    m_editor->hide();
    m_editor->setObjectName(objectName);
    m_editor->setAccessibleName(accessibleName);
    m_editor->onCommit = [this] { commit(); };
    connect(m_editor, &InlineFreeTextEditor::editingEnded, this, [this] { commit(); });
    if (const auto document = m_view.document()) {
        m_document = document;
        connect(document.get(), &PDFDocument::pagesChanged, this, &PlacedEditor::followLater);
        connect(document.get(), &PDFDocument::pageContentChanged, this, [this](const PDFPage* changed) {
            if (changed == m_page.get())
                followLater();
        });
    }
    return *m_editor;
}

void PlacedEditor::show() {
    layOut();
    m_editor->show();
    m_editor->setFocus(Qt::OtherFocusReason);
    Q_EMIT openChanged(true);
}

void PlacedEditor::close() {
    InlineFreeTextEditor* const editor = m_editor;
    m_editor.clear();
    m_page.reset();
    if (const auto document = m_document.lock())
        document->disconnect(this);
    m_document.reset();
    if (!editor)
        return;
    editor->disconnect(this);
    editor->onCommit = nullptr;
    editor->onCancel = nullptr;
    if (editor->window()->focusWidget() == editor)
        m_view.setFocus(Qt::OtherFocusReason);
    editor->hide();
    editor->deleteLater(); // it may be its own event that closes it
    Q_EMIT openChanged(false);
}

bool PlacedEditor::isInView() const {
    return m_page->document() && m_page->document() == m_view.document().get() && isSubjectThere();
}

bool PlacedEditor::canCommit() {
    if (m_editor && !isInView())
        abandon();
    return isOpen();
}

void PlacedEditor::follow() {
    if (!m_editor)
        return;
    if (isInView())
        layOut();
    else
        followLater();
}

/// A page that is moved is taken out first and put in then: whether it is gone shows when that is over.
void PlacedEditor::followLater() {
    if (std::exchange(m_isFollowQueued, true))
        return;
    QMetaObject::invokeMethod(
        this,
        [this] {
            m_isFollowQueued = false;
            if (canCommit())
                layOut();
        },
        Qt::QueuedConnection);
}
