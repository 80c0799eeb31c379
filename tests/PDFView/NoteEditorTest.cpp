#include "InlineEditorTest.h"

namespace {

using NoteEditorTest = InlineEditorTest;

TEST_F(NoteEditorTest, anOldNoteGetsOtherWordsButIsNeverEmptied) {
    const auto note = addNote(u"old words"_qs);
    m_note.start(note, page(), false);
    ASSERT_TRUE(m_note.isOpen());
    expectNear(QRectF(editor()->geometry()), m_view.convertFromPage(note->paperRect(), *page()));
    EXPECT_EQ(editor()->textCursor().selectedText(), u"old words"_qs);
    type(u"new words"_qs); // in place of what was selected
    press(Qt::Key_Return);
    EXPECT_EQ(note->contents(), u"new words"_qs);
    EXPECT_FALSE(m_undoManager->canUndo());
    EXPECT_TRUE(m_undoManager->isDocumentEdited());

    m_note.start(note, page(), false);
    press(Qt::Key_Delete);
    press(Qt::Key_Return);
    EXPECT_EQ(note->contents(), u"new words"_qs);
    m_note.start(note, page(), false);
    type(u"given up"_qs);
    press(Qt::Key_Escape);
    EXPECT_FALSE(m_note.isOpen());
    EXPECT_EQ(note->contents(), u"new words"_qs);
    EXPECT_EQ(page()->annotations(), Annotations{note});
    EXPECT_FALSE(m_undoManager->canUndo());
}

TEST_F(NoteEditorTest, aNewNoteThatIsLeftEmptyOrGivenUpGoesUndoably) {
    const struct {
        QString text;
        Qt::Key key;
    } ways[] = {{u" "_qs, Qt::Key_Return}, {u"given up"_qs, Qt::Key_Escape}};
    for (const auto& [text, key] : ways) {
        const auto note = addNote();
        m_note.start(note, page(), true);
        type(text);
        press(key);
        EXPECT_TRUE(page()->annotations().empty());
        m_undoManager->undo();
        ASSERT_EQ(page()->annotations(), Annotations{note});
        EXPECT_EQ(note->contents(), QString());
        m_undoManager->redo();
        EXPECT_TRUE(page()->annotations().empty());
    }
    const auto note = addNote();
    m_note.start(note, page(), true);
    type(u"kept"_qs);
    press(Qt::Key_Return);
    EXPECT_EQ(page()->annotations(), Annotations{note});
    EXPECT_EQ(note->contents(), u"kept"_qs);
}

} // namespace
