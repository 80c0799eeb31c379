#include "InlineEditorTest.h"

namespace {

using PageTextEditorTest = InlineEditorTest;

TEST_F(PageTextEditorTest, aRetypedLineIsAPairThatIsUndoneInOneStep) {
    m_line.begin(lineOnScreen(1));
    ASSERT_EQ(annotations().size(), 1U) << "the cover, from the start";
    EXPECT_FALSE(m_undoManager->canUndo());
    EXPECT_EQ(editor()->textCursor().selectedText(), QStringLiteral("Second line"));
    type(QStringLiteral("Another second line"));
    key(Qt::Key_Return);

    const Annotations made = annotations();
    ASSERT_EQ(made.size(), 2U);
    const QRectF cover = made[0]->bounds();
    EXPECT_NEAR(cover.left(), line(1).left() - 2, 0.01);
    EXPECT_NEAR(cover.width(), line(1).width() + 4, 0.01);
    EXPECT_GE(cover.height(), 12 + 8 + 4);
    EXPECT_EQ(made[1]->contents(), QStringLiteral("Another second line"));
    EXPECT_EQ(made[1]->bounds().topLeft(), cover.topLeft());
    EXPECT_EQ(made[1]->bounds().height(), cover.height()) << "longer, but still one line";
    expectShowsAllOf(*made[1]);
    EXPECT_NEAR(made[1]->font()->pointSizeF(), 12, 0.01);
    EXPECT_EQ(made[1]->fontColor(), QColor(Qt::black));
    EXPECT_EQ(made[1]->color()->alpha(), 0);

    for (int round = 0; round < 2; ++round) {
        m_undoManager->undo();
        EXPECT_TRUE(annotations().empty() && !m_undoManager->canUndo());
        m_undoManager->redo();
        EXPECT_EQ(annotations(), made);
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
    EXPECT_TRUE(annotations().empty() && !m_undoManager->canUndo());

    m_line.begin(lineOnScreen(0));
    m_line.begin(lineOnScreen(1)); // commits the first, which was left alone
    ASSERT_EQ(annotations().size(), 3U);
    EXPECT_EQ(annotations()[1]->contents(), QStringLiteral("First line of the page"));
    EXPECT_TRUE(m_undoManager->canUndo());
}

TEST_F(PageTextEditorTest, theEditorOfALineIsNeverTooNarrowAndItsWordsAreSeenOnADarkPage) {
    for (const double scale : {0.5, 2.0}) {
        m_view.setScaleFactor(scale);
        m_line.begin(lineOnScreen(2)); // one letter
        EXPECT_NEAR(editor()->width(), 80, 1) << scale;
        key(Qt::Key_Escape);
    }
    m_view.goToPage(page(1));
    m_line.begin(lineOnScreen(0, 1));
    EXPECT_EQ(editor()->palette().color(QPalette::Text), QColor(Qt::white));
    key(Qt::Key_Return);
    EXPECT_EQ(page(1)->annotations().back()->fontColor(), QColor(Qt::white));
    for (const auto& [height, size] : {std::pair(100, 72), {20, 16}, {5, 9}})
        EXPECT_EQ(PageTextEditor::fallbackFontSize(height), size);
}

} // namespace
