#include "InlineEditorTest.h"

#include "TextCoverAnnotation.h"

namespace {

using PageTextEditorTest = InlineEditorTest;

TEST_F(PageTextEditorTest, aRetypedLineIsAPairThatIsUndoneInOneStep) {
    m_line.begin(lineOnScreen(1));
    ASSERT_EQ(annotations().size(), 1U); // the cover, from the start
    EXPECT_FALSE(m_undoManager->canUndo());
    EXPECT_EQ(editor()->textCursor().selectedText(), QStringLiteral("Second line"));
    type(QStringLiteral("Another second line"));
    key(Qt::Key_Return);

    const Annotations made = annotations();
    ASSERT_EQ(made.size(), 2U);
    EXPECT_NE(std::dynamic_pointer_cast<TextCoverAnnotation>(made[0]), nullptr);
    const auto replacement = std::dynamic_pointer_cast<FreeTextAnnotation>(made[1]);
    ASSERT_NE(replacement, nullptr);
    EXPECT_EQ(replacement->contents(), QStringLiteral("Another second line"));
    EXPECT_EQ(replacement->bounds().topLeft(), made[0]->bounds().topLeft());
    EXPECT_EQ(replacement->bounds().height(), made[0]->bounds().height()) << "longer, but still one line";
    const QImage shown = page()->thumbnail({1224, 1584}, PDFDisplayBox::cropBox);
    const QRectF bounds = replacement->bounds();
    replacement->setBounds(bounds.adjusted(0, -100, 100, 0));
    EXPECT_EQ(page()->thumbnail({1224, 1584}, PDFDisplayBox::cropBox), shown) << "the last word is there";
    replacement->setBounds(bounds);
    EXPECT_NEAR(replacement->font()->pointSizeF(), 12, 0.01);
    EXPECT_EQ(replacement->fontColor(), QColor(Qt::black));
    EXPECT_EQ(replacement->color()->alpha(), 0);
    const QRectF cover = made[0]->bounds();
    EXPECT_NEAR(cover.left(), line(1).left() - 2, 0.01);
    EXPECT_NEAR(cover.width(), line(1).width() + 4, 0.01);
    EXPECT_GE(cover.height(), 12 + 8 + 4);

    for (int round = 0; round < 2; ++round) {
        m_undoManager->undo();
        EXPECT_TRUE(annotations().empty());
        EXPECT_FALSE(m_undoManager->canUndo());
        m_undoManager->redo();
        EXPECT_EQ(annotations(), made);
        EXPECT_FALSE(m_undoManager->canRedo());
    }
}

TEST_F(PageTextEditorTest, aLineThatIsEmptiedOrGivenUpIsAsBeforeAndAnUntouchedOneIsReplaced) {
    m_line.begin(lineOnScreen(0));
    key(Qt::Key_Delete);
    key(Qt::Key_Return);
    EXPECT_TRUE(annotations().empty());
    m_line.begin(lineOnScreen(0));
    type(QStringLiteral("given up"));
    key(Qt::Key_Escape);
    m_line.begin(m_view.convertFromPage(QPointF(300, 300), *page())); // no text there
    m_line.begin({2, 300});                                           // beside the pages
    EXPECT_FALSE(m_line.isOpen());
    EXPECT_TRUE(annotations().empty());
    EXPECT_FALSE(m_undoManager->canUndo());

    m_line.begin(lineOnScreen(0));
    m_line.begin(lineOnScreen(1)); // commits the first, which was left alone
    ASSERT_EQ(annotations().size(), 3U);
    EXPECT_EQ(annotations()[1]->contents(), QStringLiteral("First line of the page"));
    key(Qt::Key_Escape);
    EXPECT_EQ(annotations().size(), 2U);
    EXPECT_TRUE(m_undoManager->canUndo());
}

TEST_F(PageTextEditorTest, theEditorOfALineIsNeverTooNarrowAndItsWordsAreSeenOnADarkPage) {
    m_view.goToPage(page(1));
    m_line.begin(lineOnScreen(0, 1));
    EXPECT_EQ(editor()->palette().color(QPalette::Text), QColor(Qt::white));
    key(Qt::Key_Return);
    EXPECT_EQ(page(1)->annotations().back()->fontColor(), QColor(Qt::white));
    m_view.goToPage(page(0));
    for (const double scale : {0.5, 1.0, 2.0}) {
        m_view.setScaleFactor(scale);
        m_line.begin(lineOnScreen(2)); // one letter
        EXPECT_NEAR(editor()->width(), 80, 1) << scale;
        key(Qt::Key_Escape);
    }
    EXPECT_EQ(PageTextEditor::fallbackFontSize(100), 72);
    EXPECT_EQ(PageTextEditor::fallbackFontSize(20), 16);
    EXPECT_EQ(PageTextEditor::fallbackFontSize(5), 9);
}

} // namespace
