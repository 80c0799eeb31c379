#include "InlineEditorTest.h"

namespace {

using NoteEditorTest = InlineEditorTest;

TEST_F(NoteEditorTest, anOldNoteGetsOtherWordsButIsNeverEmptied) {
    const auto note = addNote(QStringLiteral("old words"));
    m_note.start(note, page(), false);
    ASSERT_TRUE(m_note.isOpen());
    expectNear(QRectF(editor()->geometry()), m_view.convertFromPage(note->paperRect(), *page()));
    EXPECT_EQ(editor()->textCursor().selectedText(), QStringLiteral("old words"));
    type(QStringLiteral("new words")); // in place of what was selected
    press(Qt::Key_Return);
    EXPECT_EQ(note->contents(), QStringLiteral("new words"));
    EXPECT_FALSE(m_undoManager->canUndo());
    EXPECT_TRUE(m_undoManager->isDocumentEdited());

    m_note.start(note, page(), false);
    press(Qt::Key_Delete);
    press(Qt::Key_Return);
    EXPECT_EQ(note->contents(), QStringLiteral("new words"));
    m_note.start(note, page(), false);
    type(QStringLiteral("given up"));
    press(Qt::Key_Escape);
    EXPECT_FALSE(m_note.isOpen());
    EXPECT_EQ(note->contents(), QStringLiteral("new words"));
    EXPECT_EQ(page()->annotations(), Annotations{note});
    EXPECT_FALSE(m_undoManager->canUndo());
}

TEST_F(NoteEditorTest, aNewNoteThatIsLeftEmptyOrGivenUpGoesUndoably) {
    const struct {
        QString text;
        Qt::Key key;
    } ways[] = {{QStringLiteral(" "), Qt::Key_Return}, {QStringLiteral("given up"), Qt::Key_Escape}};
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
    type(QStringLiteral("kept"));
    press(Qt::Key_Return);
    EXPECT_EQ(page()->annotations(), Annotations{note});
    EXPECT_EQ(note->contents(), QStringLiteral("kept"));
}

} // namespace
