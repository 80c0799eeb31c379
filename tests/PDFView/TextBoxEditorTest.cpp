#include "InlineEditorTest.h"

#include <QScrollBar>

namespace {

using TextBoxEditorTest = InlineEditorTest;

TEST_F(TextBoxEditorTest, aTextBoxBecomesFreeTextWhereItWasTyped) {
    m_toolState->setColor(QColor(10, 20, 200));
    m_toolState->setFontSize(20);
    m_box.start({300, 250}, page());
    EXPECT_TRUE(editor()->hasFocus());
    EXPECT_FALSE(editor()->accessibleName().isEmpty());
    type(QStringLiteral("  Hello  "));
    m_toolState->setColor(QColor(200, 20, 10));
    EXPECT_EQ(editor()->palette().color(QPalette::Text), QColor(200, 20, 10));
    const QRectF frame(editor()->geometry());
    key(Qt::Key_Enter, Qt::KeypadModifier);

    EXPECT_EQ(editor(), nullptr);
    EXPECT_TRUE(m_view.hasFocus());
    const Annotations made = annotations();
    ASSERT_EQ(made.size(), 1U);
    EXPECT_NE(std::dynamic_pointer_cast<FreeTextAnnotation>(made[0]), nullptr);
    EXPECT_EQ(made[0]->contents(), QStringLiteral("Hello"));
    EXPECT_EQ(made[0]->fontColor(), QColor(200, 20, 10));
    EXPECT_EQ(made[0]->color()->alpha(), 0);
    EXPECT_EQ(made[0]->font()->pointSizeF(), 20);
    expectNear(m_view.convertFromPage(made[0]->bounds(), *page()), frame);

    m_undoManager->undo();
    EXPECT_TRUE(annotations().empty());
    m_undoManager->redo();
    EXPECT_EQ(annotations(), made);
    m_undoManager->undo();

    // One without text or left by Escape leaves nothing.
    for (const auto& [words, end] :
         {std::pair(QStringLiteral("   "), Qt::Key_Return), std::pair(QStringLiteral("given up"), Qt::Key_Escape)}) {
        m_box.start({100, 200}, page());
        type(words);
        key(end);
        EXPECT_FALSE(m_box.isOpen());
        EXPECT_TRUE(annotations().empty());
        EXPECT_FALSE(m_undoManager->canUndo() || m_undoManager->isDocumentEdited());
    }
}

TEST_F(TextBoxEditorTest, aTextBoxGrowsDownwardsWithItsHandles) {
    m_box.start({100, 200}, page());
    const QRect before = editor()->geometry();
    type(QStringLiteral("one"));
    key(Qt::Key_Return, Qt::ShiftModifier);
    type(QStringLiteral("a second line that is too long for the width of the box"));
    const QRect after = editor()->geometry();
    EXPECT_EQ(after.topLeft(), before.topLeft());
    EXPECT_EQ(after.width(), 220);
    EXPECT_GT(after.height(), 2 * before.height());
    EXPECT_EQ(editor()->verticalScrollBar()->maximum(), 0);

    const auto handles = [this] { return m_view.viewport()->findChildren<QWidget*>(QStringLiteral("textBoxHandle")); };
    EXPECT_EQ(handles().size(), 8);
    QRectF around;
    for (const QWidget* handle : handles())
        around |= QRectF(QRectF(handle->geometry()).center(), QSizeF(1, 1));
    expectNear(around, after, 2);
    key(Qt::Key_Return);
    EXPECT_TRUE(handles().isEmpty());
    EXPECT_TRUE(annotations().at(0)->contents().startsWith(QStringLiteral("one\na second")));
}

TEST_F(TextBoxEditorTest, aTextBoxHasItsScreenSizeOnThePageAlsoWhenThatIsZoomedOrTurned) {
    for (const int rotation : {90, 180, 270}) {
        page()->setRotation(rotation);
        endTurn();
        m_box.start({300, 200}, page());
        type(QStringLiteral("turned"));
        const QRectF frame(editor()->geometry());
        EXPECT_EQ(frame.topLeft(), QPointF(300, 200));
        key(Qt::Key_Return);
        const QRectF bounds = annotations().back()->bounds();
        EXPECT_NEAR(rotation == 180 ? bounds.width() : bounds.height(), 220, 0.01) << rotation;
        expectNear(m_view.convertFromPage(bounds, *page()), frame);
    }
    page()->setRotation(0);
    endTurn();
    for (const double scale : {1.0, 2.55, 4.0}) {
        m_view.setScaleFactor(scale);
        const QPointF corner = m_view.convertToPage(QPointF(300, 250), *page());
        const auto box = writeBox({300, 250}, QStringLiteral("Several words that take more than one line of the box"));
        ASSERT_NE(box, nullptr);
        EXPECT_EQ(box->font()->pointSizeF(), 16);
        const QRectF bounds = box->bounds();
        expectNear(QRectF(bounds.left(), bounds.bottom(), bounds.width(), 0), QRectF(corner, QSizeF(220 / scale, 0)),
                   0.05);
        const QImage shown = page()->thumbnail({1224, 1584}, PDFDisplayBox::cropBox);
        box->setBounds(bounds.adjusted(0, -300, 0, 0));
        EXPECT_EQ(page()->thumbnail({1224, 1584}, PDFDisplayBox::cropBox), shown)
            << scale << ": some words are cut off";
        page()->removeAnnotation(box);
    }
}

/// Around the dark pixels within `area` of the viewport, in device pixels of it.
QRect darkPixels(const AnnotatingPDFView& view, const QRect& area) {
    const QImage picture = view.viewport()->grab(area).toImage();
    QRect dark;
    for (int y = 0; y < picture.height(); ++y)
        for (int x = 0; x < picture.width(); ++x)
            if (qGray(picture.pixel(x, y)) < 100)
                dark |= QRect(x, y, 1, 1);
    return dark;
}

TEST_F(TextBoxEditorTest, committedTextStaysWhereItWasTyped) {
    double y = 330;
    for (const QString& first : {QStringLiteral("Words that take more than one line of the box"),
                                 QStringLiteral("Thisisawordwithoutablankthattakesmorethanoneline"),
                                 QStringLiteral("هذا نص طويل يكتب من اليمين إلى اليسار في سطرين")}) {
        m_box.start({90, y}, page());
        editor()->insertPlainText(first);
        key(Qt::Key_Return, Qt::ShiftModifier);
        type(QStringLiteral("and (another)"));
        const QRect area = editor()->geometry().adjusted(6, 4, -6, -4);
        const QRect lastLine(area.left(), area.bottom() - 12, area.width(), 13);
        editor()->setReadOnly(true); // without a text cursor
        const QRect typed = darkPixels(m_view, area);
        const QRect typedLast = darkPixels(m_view, lastLine);
        editor()->setReadOnly(false);
        key(Qt::Key_Return);
        QRect committed;
        EXPECT_TRUE(QTest::qWaitFor(
            [&] {
                committed = darkPixels(m_view, area);
                return m_view.isSharp() && !committed.isNull();
            },
            20'000));
        EXPECT_GT(typed.height(), 45); // three lines
        expectNear(QRectF(committed), QRectF(typed), 1);
        expectNear(QRectF(darkPixels(m_view, lastLine)), QRectF(typedLast), 1);
        EXPECT_LT(typedLast.left(), 3) << "Latin words, whatever stands before them";
        y += 120;
    }
}

} // namespace
