#include "InlineEditorTest.h"

#include <QScrollBar>

namespace {

using TextBoxEditorTest = InlineEditorTest;

TEST_F(TextBoxEditorTest, aTextBoxBecomesFreeTextWhereItWasTyped) {
    m_toolState->setFontSize(20);
    m_box.start({300, 250}, page());
    EXPECT_TRUE(editor()->hasFocus());
    EXPECT_FALSE(editor()->accessibleName().isEmpty());
    type(QStringLiteral("  Hello  "));
    m_toolState->setColor(QColor(200, 20, 10));
    EXPECT_EQ(editor()->palette().color(QPalette::Text), QColor(200, 20, 10));
    const QRectF frame(editor()->geometry());
    key(Qt::Key_Enter, Qt::KeypadModifier);

    EXPECT_TRUE(m_view.hasFocus());
    ASSERT_EQ(annotations().size(), 1U);
    const PDFAnnotation& made = *annotations()[0];
    EXPECT_EQ(made.contents(), QStringLiteral("Hello"));
    EXPECT_EQ(made.fontColor(), QColor(200, 20, 10));
    EXPECT_EQ(made.color()->alpha(), 0);
    EXPECT_EQ(made.font()->pointSizeF(), 20);
    expectNear(m_view.convertFromPage(made.bounds(), *page()), frame);
    m_undoManager->undo();
    EXPECT_TRUE(annotations().empty());

    // One without text or left by Escape leaves nothing.
    for (const Qt::Key end : {Qt::Key_Return, Qt::Key_Escape}) {
        m_box.start({100, 200}, page());
        type(end == Qt::Key_Return ? QStringLiteral("   ") : QStringLiteral("given up"));
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
    EXPECT_EQ(QRect(after.topLeft(), before.size()), before);
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
    for (const auto& [rotation, scale] : {std::pair(90, 1.0), {180, 1.0}, {270, 1.0}, {0, 2.55}, {0, 4.0}}) {
        SCOPED_TRACE(testing::Message() << rotation << " degrees, " << scale);
        page()->setRotation(rotation);
        m_view.setScaleFactor(scale);
        endTurn();
        const auto box = writeBox({300, 250}, QStringLiteral("Several words that take more than one line of the box"));
        ASSERT_NE(box, nullptr);
        EXPECT_EQ(box->font()->pointSizeF(), 16);
        const QRectF seen = m_view.convertFromPage(box->bounds(), *page());
        expectNear(QRectF(seen.topLeft(), QSizeF(seen.width(), 0)), QRectF(300, 250, 220, 0), 0.2);
        expectShowsAllOf(*box);
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
        EXPECT_TRUE(QTest::qWaitFor([&] { return m_view.isSharp() && !darkPixels(m_view, area).isNull(); }, 20'000));
        EXPECT_GT(typed.height(), 45); // three lines
        expectNear(QRectF(darkPixels(m_view, area)), QRectF(typed), 1);
        expectNear(QRectF(darkPixels(m_view, lastLine)), QRectF(typedLast), 1);
        EXPECT_LT(typedLast.left(), 3) << "Latin words, whatever stands before them";
        y += 120;
    }
}

} // namespace
