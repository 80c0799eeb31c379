#include "InlineEditorTest.h"

#include "FreeTextAnnotation.h"

#include <QScrollBar>

#include <algorithm>

namespace {

using TextBoxEditorTest = InlineEditorTest;

TEST_F(TextBoxEditorTest, aTextBoxBecomesFreeTextWhereItWasTyped) {
    m_toolState->setColor(QColor(10, 20, 200));
    m_toolState->setFontSize(20);
    m_box.start({300, 250}, page());
    ASSERT_TRUE(m_box.isOpen());
    EXPECT_TRUE(editor()->hasFocus());
    EXPECT_FALSE(editor()->accessibleName().isEmpty());
    EXPECT_EQ(editor()->geometry().topLeft(), QPoint(300, 250));
    EXPECT_EQ(editor()->width(), 220);
    type(QStringLiteral("  Hello  "));
    m_toolState->setColor(QColor(200, 20, 10));
    EXPECT_EQ(editor()->palette().color(QPalette::Text), QColor(200, 20, 10));
    const QRectF frame(editor()->geometry());
    press(Qt::Key_Enter, Qt::KeypadModifier);

    EXPECT_FALSE(m_box.isOpen());
    EXPECT_EQ(editor(), nullptr);
    EXPECT_TRUE(m_view.hasFocus());
    const Annotations made = page()->annotations();
    ASSERT_EQ(made.size(), 1U);
    EXPECT_NE(std::dynamic_pointer_cast<FreeTextAnnotation>(made[0]), nullptr);
    EXPECT_EQ(made[0]->contents(), QStringLiteral("Hello"));
    EXPECT_EQ(made[0]->fontColor(), QColor(200, 20, 10));
    EXPECT_EQ(made[0]->color()->alpha(), 0);
    EXPECT_EQ(made[0]->font()->pointSizeF(), 20);
    expectNear(m_view.convertFromPage(made[0]->bounds(), *page()), frame, 0.01);

    m_undoManager->undo();
    EXPECT_TRUE(page()->annotations().empty());
    EXPECT_FALSE(m_undoManager->canUndo());
    m_undoManager->redo();
    EXPECT_EQ(page()->annotations(), made);
}

TEST_F(TextBoxEditorTest, aTextBoxGrowsDownwardsWithItsHandles) {
    m_box.start({100, 200}, page());
    const QRect before = editor()->geometry();
    press(Qt::Key_Return, Qt::ShiftModifier);
    type(QStringLiteral("a second line that is too long for the width of the box"));
    ASSERT_TRUE(m_box.isOpen());
    const QRect after = editor()->geometry();
    EXPECT_EQ(after.topLeft(), before.topLeft());
    EXPECT_EQ(after.width(), before.width());
    EXPECT_GT(after.height(), 2 * before.height());
    EXPECT_EQ(editor()->verticalScrollBar()->maximum(), 0);

    std::vector<QPointF> centres;
    for (const QWidget* handle : m_view.viewport()->findChildren<QWidget*>(QStringLiteral("textBoxHandle"))) {
        EXPECT_EQ(handle->size(), QSize(7, 7));
        EXPECT_TRUE(handle->isVisible());
        centres.push_back(QRectF(handle->geometry()).center());
    }
    const QRectF frame(after);
    ASSERT_EQ(centres.size(), 8U);
    for (const QPointF& wanted : {frame.topLeft(), frame.topRight(), frame.bottomLeft(), frame.bottomRight(),
                                  QPointF(frame.center().x(), frame.top()), QPointF(frame.right(), frame.center().y())})
        EXPECT_TRUE(std::any_of(centres.begin(), centres.end(),
                                [&](QPointF centre) { return (centre - wanted).manhattanLength() <= 2; }));

    press(Qt::Key_Return);
    EXPECT_TRUE(m_view.viewport()->findChildren<QWidget*>(QStringLiteral("textBoxHandle")).isEmpty());
    ASSERT_EQ(page()->annotations().size(), 1U);
    // The line break at the start was trimmed, so one inside it is wanted.
    const auto second = writeBox({100, 400}, QStringLiteral("one"));
    m_box.start({100, 500}, page());
    type(QStringLiteral("one"));
    press(Qt::Key_Return, Qt::ShiftModifier);
    type(QStringLiteral("two"));
    press(Qt::Key_Return);
    EXPECT_EQ(page()->annotations().back()->contents(), QStringLiteral("one\ntwo"));
    EXPECT_EQ(second->contents(), QStringLiteral("one"));
}

TEST_F(TextBoxEditorTest, aBoxWithoutTextOrLeftByEscapeLeavesNothing) {
    m_box.start({100, 200}, page());
    press(Qt::Key_Return);
    m_box.start({100, 200}, page());
    type(QStringLiteral("   "));
    press(Qt::Key_Return);
    m_box.start({100, 200}, page());
    type(QStringLiteral("given up"));
    press(Qt::Key_Escape);
    EXPECT_FALSE(m_box.isOpen());
    EXPECT_TRUE(m_view.viewport()->findChildren<QWidget*>(QStringLiteral("textBoxHandle")).isEmpty());
    EXPECT_TRUE(page()->annotations().empty());
    EXPECT_FALSE(m_undoManager->canUndo());
    EXPECT_FALSE(m_undoManager->isDocumentEdited());
}

TEST_F(TextBoxEditorTest, aTextBoxHasItsScreenSizeOnThePageAlsoWhenThatIsZoomedOrTurned) {
    m_view.setScaleFactor(2);
    const QPointF corner = m_view.convertToPage(QPointF(200, 150), *page());
    const auto zoomed = writeBox({200, 150}, QStringLiteral("zoomed"));
    ASSERT_NE(zoomed, nullptr);
    EXPECT_NEAR(zoomed->bounds().width(), 110, 0.01);
    EXPECT_NEAR(zoomed->bounds().left(), corner.x(), 0.01);
    EXPECT_NEAR(zoomed->bounds().bottom(), corner.y(), 0.01); // its upper edge: y goes up on the page
    EXPECT_EQ(zoomed->font()->pointSizeF(), 16);

    m_view.setScaleFactor(1);
    for (const int rotation : {90, 180, 270}) {
        page()->setRotation(rotation);
        QCoreApplication::processEvents();
        const QPointF point(300, 200);
        m_box.start(point, page());
        type(QStringLiteral("turned"));
        const QRectF frame(editor()->geometry());
        EXPECT_EQ(frame.topLeft(), point);
        press(Qt::Key_Return);
        const QRectF bounds = page()->annotations().back()->bounds();
        EXPECT_NEAR(rotation == 180 ? bounds.width() : bounds.height(), 220, 0.01) << rotation;
        expectNear(m_view.convertFromPage(bounds, *page()), frame, 0.01);
    }
}

TEST_F(TextBoxEditorTest, aBoxKeepsItsCornerAndWidthAndGrowsUntilItShowsAllWords) {
    for (const double scale : {1.0, 2.55, 4.0}) {
        m_view.setScaleFactor(scale);
        const QPointF corner = m_view.convertToPage(QPointF(300, 250), *page());
        const auto box = writeBox({300, 250}, QStringLiteral("Several words that take more than one line of the box"));
        ASSERT_NE(box, nullptr);
        const QRectF bounds = box->bounds();
        expectNear(QRectF(bounds.left(), bounds.bottom(), bounds.width(), 0), QRectF(corner, QSizeF(220 / scale, 0)),
                   0.05);
        const QImage shown = page()->thumbnail({1224, 1584}, PDFDisplayBox::cropBox);
        box->setBounds(bounds.adjusted(0, -300, 0, 0));
        EXPECT_EQ(page()->thumbnail({1224, 1584}, PDFDisplayBox::cropBox), shown)
            << scale << ": some words are cut off";
        EXPECT_EQ(page()->removeAnnotation(box), 0);
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
        press(Qt::Key_Return, Qt::ShiftModifier);
        type(QStringLiteral("and (another)"));
        const QRect area = editor()->geometry().adjusted(6, 4, -6, -4);
        const QRect lastLine(area.left(), area.bottom() - 12, area.width(), 13);
        editor()->setReadOnly(true); // without a text cursor
        const QRect typed = darkPixels(m_view, area);
        const QRect typedLast = darkPixels(m_view, lastLine);
        editor()->setReadOnly(false);
        press(Qt::Key_Return);
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
