#include "InlineEditorTest.h"

#include "FreeTextAnnotation.h"
#include "TextCoverAnnotation.h"

namespace {

using PageTextEditorTest = InlineEditorTest;

TEST_F(PageTextEditorTest, aRetypedLineIsAPairThatIsUndoneInOneStep) {
    const QRectF line = page()->text()->lines[1].bounds;
    m_line.begin(lineOnScreen(1));
    ASSERT_TRUE(m_line.isOpen());
    ASSERT_EQ(page()->annotations().size(), 1U); // the cover, from the start
    EXPECT_FALSE(m_undoManager->canUndo());
    EXPECT_EQ(editor()->textCursor().selectedText(), QStringLiteral("Second line"));
    EXPECT_EQ(editor()->palette().color(QPalette::Text), QColor(Qt::black));
    type(QStringLiteral("Another second line"));
    press(Qt::Key_Return);

    const Annotations made = page()->annotations();
    ASSERT_EQ(made.size(), 2U);
    EXPECT_NE(std::dynamic_pointer_cast<TextCoverAnnotation>(made[0]), nullptr);
    EXPECT_EQ(made[0]->type(), PDFAnnotationSubtype::square);
    EXPECT_FALSE(made[0]->color() || made[0]->border());
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
    EXPECT_NEAR(made[0]->bounds().left(), line.left() - 2, 0.01);
    EXPECT_NEAR(made[0]->bounds().right(), line.right() + 2, 0.01);
    EXPECT_NEAR(made[0]->bounds().center().y(), line.center().y(), 0.01);
    EXPECT_GE(made[0]->bounds().height(), 12 + 8 + 4);

    for (int round = 0; round < 2; ++round) {
        m_undoManager->undo();
        EXPECT_TRUE(page()->annotations().empty());
        EXPECT_FALSE(m_undoManager->canUndo());
        m_undoManager->redo();
        EXPECT_EQ(page()->annotations(), made);
        EXPECT_FALSE(m_undoManager->canRedo());
    }
}

TEST_F(PageTextEditorTest, aLineThatIsEmptiedOrGivenUpIsAsBeforeAndAnUntouchedOneIsReplaced) {
    m_line.begin(lineOnScreen(0));
    press(Qt::Key_Delete);
    press(Qt::Key_Return);
    EXPECT_TRUE(page()->annotations().empty());
    m_line.begin(lineOnScreen(0));
    type(QStringLiteral("given up"));
    press(Qt::Key_Escape);
    EXPECT_FALSE(m_line.isOpen());
    EXPECT_TRUE(page()->annotations().empty());
    EXPECT_FALSE(m_undoManager->canUndo());

    m_line.begin(m_view.convertFromPage(QPointF(300, 300), *page())); // no text there
    EXPECT_FALSE(m_line.isOpen());
    m_line.begin({2, 300}); // beside the pages
    EXPECT_FALSE(m_line.isOpen());
    EXPECT_TRUE(page()->annotations().empty());

    m_line.begin(lineOnScreen(0));
    m_line.begin(lineOnScreen(1)); // commits the first, which was left alone
    ASSERT_EQ(page()->annotations().size(), 3U);
    EXPECT_EQ(page()->annotations()[1]->contents(), QStringLiteral("First line of the page"));
    press(Qt::Key_Escape);
    EXPECT_EQ(page()->annotations().size(), 2U);
    EXPECT_TRUE(m_undoManager->canUndo());
}

TEST_F(PageTextEditorTest, theEditorOfALineIsAsLargeAsThePageIsShownButNeverTooNarrow) {
    for (const double scale : {0.5, 1.0, 2.0}) {
        m_view.setScaleFactor(scale);
        m_line.begin(lineOnScreen(2)); // one letter
        ASSERT_TRUE(m_line.isOpen()) << scale;
        const QRectF cover = m_view.convertFromPage(page()->annotations().back()->bounds(), *page());
        EXPECT_NEAR(editor()->width(), 80, 1) << scale;
        EXPECT_NEAR(editor()->height(), cover.height(), 1) << scale;
        EXPECT_NEAR(editor()->x(), cover.x(), 0.51);
        const double pixels = editor()->font().pointSizeF() * editor()->logicalDpiY() / 72;
        EXPECT_NEAR(pixels, 12 * scale, 0.01);
        press(Qt::Key_Escape);
    }
    EXPECT_EQ(PageTextEditor::fallbackFontSize(100), 72);
    EXPECT_EQ(PageTextEditor::fallbackFontSize(20), 16);
    EXPECT_EQ(PageTextEditor::fallbackFontSize(5), 9);
}

TEST_F(PageTextEditorTest, textOnADarkPageIsWhite) {
    m_view.goToPage(page(1));
    m_line.begin(lineOnScreen(0, 1));
    ASSERT_TRUE(m_line.isOpen());
    EXPECT_EQ(editor()->palette().color(QPalette::Text), QColor(Qt::white));
    press(Qt::Key_Return);
    EXPECT_EQ(page(1)->annotations().back()->fontColor(), QColor(Qt::white));
    EXPECT_EQ(page(1)->annotations().back()->contents(), QStringLiteral("White on black"));
}

} // namespace
