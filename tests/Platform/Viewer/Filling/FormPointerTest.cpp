#include "ShownForm.h"

#include <QContextMenuEvent>
#include <QHelpEvent>
#include <QInputMethodEvent>
#include <QLineEdit>
#include <QMenu>
#include <QMouseEvent>
#include <QTextEdit>
#include <QToolTip>
#include <QWheelEvent>

namespace {

using Form = ShownForm<PDFView>;

} // namespace

TEST(FormPointer, tellsWhatItIsOverAndADragFromAFieldSelectsNothing) {
    Form form;
    const QPoint spot = form.middle(FormFixture::name);
    QHelpEvent help(QEvent::ToolTip, spot, form.view.viewport()->mapToGlobal(spot));
    QApplication::sendEvent(form.view.viewport(), &help);
    EXPECT_EQ(QToolTip::text(), QStringLiteral("Your name (required)"));
    form.click(FormFixture::send);
    EXPECT_EQ(QToolTip::text(), QStringLiteral("What the buttons of a form would do is never run here."));

    const auto drag = [&](QPoint from, QPoint to) {
        QTest::mousePress(form.view.viewport(), Qt::LeftButton, {}, from);
        QMouseEvent move(QEvent::MouseMove, to, form.view.viewport()->mapToGlobal(QPointF(to)), Qt::NoButton,
                         Qt::LeftButton, {});
        QApplication::sendEvent(form.view.viewport(), &move);
        QTest::mouseRelease(form.view.viewport(), Qt::LeftButton, {}, to);
    };
    const QRectF line = form.onScreen(QRectF(72, 725, 100, 10)); // above the field
    drag(form.middle(FormFixture::agree), line.center().toPoint());
    EXPECT_FALSE(form.view.hasSelection());
    EXPECT_EQ(form.value(FormFixture::agree), QStringList(QStringLiteral("Off")));
    form.view.selectAll();
    drag(form.middle(FormFixture::name), line.center().toPoint());
    EXPECT_FALSE(form.view.hasSelection());
    EXPECT_EQ(form.editor(), nullptr);
    drag(QPoint(int(line.left()) - 5, int(form.onScreen(QRectF(72, 700, 1, 60)).top())),
         form.middle(FormFixture::name)); // from outside over a field: that selects
    EXPECT_TRUE(form.view.hasSelection());
}

TEST(FormPointer, anEditorLendsTheKeyboardToMenusAndWindowsLeavesTheWheelToThePageAndFinishesACompositionFirst) {
    Form form;
    form.click(FormFixture::notes);
    auto* const editor = qobject_cast<QTextEdit*>(form.editor());
    ASSERT_NE(editor, nullptr);
    QContextMenuEvent click(QContextMenuEvent::Mouse, {30, 10}, editor->mapToGlobal(QPoint(30, 10)));
    QApplication::sendEvent(editor->viewport(), &click);
    auto* const menu = qobject_cast<QMenu*>(QApplication::activePopupWidget());
    ASSERT_NE(menu, nullptr);
    menu->close();
    QWidget other;
    for (QWidget* const window : {&other, static_cast<QWidget*>(&form.view)}) {
        window->show();
        window->activateWindow();
        EXPECT_TRUE(QTest::qWaitForWindowActive(window));
    }
    EXPECT_TRUE(editor->hasFocus());

    const int before = editor->y();
    QWheelEvent wheel(QPointF(5, 5), editor->viewport()->mapToGlobal(QPointF(5, 5)), {}, {0, -120}, Qt::NoButton,
                      Qt::NoModifier, Qt::NoScrollPhase, false);
    QApplication::sendEvent(editor->viewport(), &wheel);
    EXPECT_TRUE(QTest::qWaitFor([&] { return editor->y() < before - 20; }, 20'000));

    QInputMethodEvent composing(QStringLiteral("ni"), {});
    QApplication::sendEvent(editor, &composing);
    form.key(Qt::Key_Return, Qt::ControlModifier);
    form.key(Qt::Key_Escape);
    ASSERT_EQ(form.editor(), editor);
    QInputMethodEvent composed;
    composed.setCommitString(QStringLiteral("你"));
    QApplication::sendEvent(editor, &composed);
    form.key(Qt::Key_Return, Qt::ControlModifier);
    EXPECT_EQ(form.value(FormFixture::notes), QStringList(QStringLiteral("你")));
}

TEST(FormPointer, theArrowStaysWhileAComboBoxIsTypedIn) {
    Form form;
    form.click(FormFixture::city);
    form.type(QStringLiteral("Par"));
    QWidget* const editor = form.editor();
    ASSERT_NE(editor, nullptr);
    const QPoint arrow(editor->width() - 6, editor->height() / 2);
    QTest::mouseClick(editor, Qt::LeftButton, {}, editor->rect().center());
    EXPECT_EQ(form.choices(), nullptr);
    QTest::mouseClick(editor, Qt::LeftButton, {}, arrow);
    ASSERT_NE(form.choices(), nullptr);
    form.choose(1);
    EXPECT_EQ(qobject_cast<QLineEdit*>(form.editor())->text(), QStringLiteral("Oslo"));
    form.key(Qt::Key_Return);
    EXPECT_EQ(form.value(FormFixture::city), QStringList(QStringLiteral("Oslo")));
}

TEST(FormPointer, fieldsAreTintedOnTheScreenAndNowhereElse) {
    Form form;
    const QPoint inName = (form.onScreen(FormFixture::name).center()).toPoint();
    const auto colorAt = [&](QPoint point) {
        const QImage picture = form.view.viewport()->grab().toImage();
        return picture.pixelColor((QPointF(point) * picture.devicePixelRatio()).toPoint());
    };
    ASSERT_TRUE(QTest::qWaitFor([&] { return form.view.isSharp() && colorAt(inName) != QColor(Qt::white); }, 20'000));
    EXPECT_GT(colorAt(inName).blue(), colorAt(inName).red());
    EXPECT_EQ(colorAt(form.onScreen(FormFixture::fixed).topRight().toPoint() + QPoint(-6, 6)), QColor(Qt::white));
    const QPoint edge = form.onScreen(FormFixture::name).topRight().toPoint() + QPoint(-1, 10);
    const QColor missing = colorAt(edge);
    EXPECT_GT(missing.red(), missing.blue()); // required and empty
    form.click(FormFixture::name);
    form.type(QStringLiteral("x"));
    form.key(Qt::Key_Return);
    form.key(Qt::Key_Escape); // no ring either
    ASSERT_TRUE(QTest::qWaitFor([&] { return form.view.isSharp(); }, 20'000));
    EXPECT_NE(colorAt(edge), missing);

    const QImage picture = form.document->page(0)->thumbnail({612, 792}, PDFDisplayBox::cropBox);
    EXPECT_EQ(picture.pixelColor(FormFixture::amount.center().toPoint().x(), 792 - 630), QColor(Qt::white));
}

TEST(FormPointer, nothingReactsWhileFormsAreNotFilled) {
    Form form;
    form.click(FormFixture::name);
    form.type(QStringLiteral("Ada"));
    form.view.setFillsForms(false);
    EXPECT_EQ(form.editor(), nullptr);
    EXPECT_EQ(form.value(FormFixture::name), QStringList(QStringLiteral("Ada")));
    form.click(FormFixture::agree);
    EXPECT_EQ(form.value(FormFixture::agree), QStringList(QStringLiteral("Off")));
    form.key(Qt::Key_Tab);
    EXPECT_EQ(form.editor(), nullptr);
    EXPECT_EQ(form.view.accessibleDescription(), QStringLiteral("Link: Page 3"));
}
