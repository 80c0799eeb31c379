#include "ShownForm.h"

#include <QAccessible>
#include <QPushButton>
#include <QVBoxLayout>

namespace {

using Form = ShownForm<PDFView>;

QString description(PDFView& view) {
    return QAccessible::queryAccessibleInterface(&view)->text(QAccessible::Description);
}

} // namespace

TEST(FormKeyboard, tabGoesThroughFieldsAndLinksAndOverPages) {
    Form form;
    const auto at = [&] { return form.editor() ? form.editor()->accessibleName() : form.view.accessibleDescription(); };
    QStringList way;
    for (int i = 0; i < 13; ++i) {
        form.key(Qt::Key_Tab);
        way << at().section(QLatin1Char(','), 0, 0);
    }
    EXPECT_EQ(way.join(QLatin1Char('|')).toStdString(),
              "Your name|code|Link: Page 3|secret|notes|amount|Check box: agree|Radio button: size|"
              "Radio button: size|Combo box: color|city|fruit|remark");
    EXPECT_TRUE(form.view.viewport()->rect().contains(form.onScreen(FormFixture::remark, 2).toAlignedRect()));
    form.type(QStringLiteral("typed on the way"));
    form.key(Qt::Key_Backtab);
    EXPECT_EQ(form.value(FormFixture::remark, 2), QStringList(QStringLiteral("typed on the way")));
    EXPECT_EQ(at(), QStringLiteral("fruit"));
    EXPECT_EQ(form.view.currentPageIndex(), 0);
}

TEST(FormKeyboard, tabGoesToTheNextPageWithFieldsPastAnyNumberWithout) {
    constexpr int last = 60;
    constexpr int listed = 30;
    const QRectF rect(100, 700, 100, 20);
    for (const bool formListsFields : {true, false}) {
        PdfFixture pdf;
        for (int i = 0; i <= last; ++i)
            pdf.addPage({QStringLiteral("Page")});
        for (const int page : {0, listed, last})
            pdf.addAnnotation(page, "<< /Type /Annot /Subtype /Widget /FT /Tx /F 4 /T (p" + QByteArray::number(page) +
                                        ") /Rect " + PdfFixture::rectArray(rect) + " >>");
        const QByteArray group = pdf.addObject("<< /FT /Tx /T (of the form) /Kids [] >>");
        for (const int page : {0, listed}) {
            const QByteArray widget = pdf.addAnnotation(page, "<< /Type /Annot /Subtype /Widget /F 4 /Parent " + group +
                                                                  " /Rect [100 600 200 620] >>");
            pdf.appendToArray(group, "/Kids", widget);
        }
        if (formListsFields)
            pdf.appendToArray(pdf.form(), "/Fields", group);
        Form form(pdf.bytes(), 1);
        for (int i = 0; i < 3; ++i)
            form.key(Qt::Key_Tab);
        EXPECT_EQ(form.view.currentPageIndex(), listed);
        // Pages of which the form tells that they hold no field weren't read.
        EXPECT_EQ(form.document->page(listed / 2)->annotationsLoaded(), !formListsFields);
        form.key(Qt::Key_Backtab);
        EXPECT_EQ(form.view.currentPageIndex(), 0);
    }
}

TEST(FormKeyboard, behindTheLastFieldItLeavesTheView) {
    QWidget window;
    auto* const layout = new QVBoxLayout(&window);
    auto* const view = new PDFView(&window);
    auto* const next = new QPushButton(QStringLiteral("next"), &window);
    layout->addWidget(view);
    layout->addWidget(next);
    view->setDocument(PDFDocument::fromData(FormFixture::bytes()));
    window.resize(700, 700);
    window.show();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&window));
    view->goToLastPage();
    view->setFocus(Qt::TabFocusReason);
    QTest::keyClick(view, Qt::Key_Tab);
    ASSERT_NE(QApplication::focusWidget(), view);
    QTest::keyClicks(QApplication::focusWidget(), QStringLiteral("last"));
    QTest::keyClick(QApplication::focusWidget(), Qt::Key_Tab);
    EXPECT_TRUE(next->hasFocus());
    EXPECT_EQ(view->accessibleDescription(), QStringLiteral("Page 3 of 3"));
}

TEST(FormKeyboard, spaceAndArrowsWorkOnButtonsAndAreTold) {
    Form form;
    form.click(FormFixture::agree);
    EXPECT_EQ(description(form.view), QStringLiteral("Check box: agree, checked"));
    form.key(Qt::Key_Space);
    EXPECT_EQ(form.value(FormFixture::agree), QStringList(QStringLiteral("Off")));
    EXPECT_EQ(description(form.view), QStringLiteral("Check box: agree, not checked"));

    form.click(FormFixture::small);
    EXPECT_EQ(form.value(FormFixture::large), QStringList(QStringLiteral("small")));
    for (const Qt::Key key : {Qt::Key_Right, Qt::Key_Down, Qt::Key_Left}) {
        const QString before = form.value(FormFixture::small).front();
        form.key(key);
        EXPECT_NE(form.value(FormFixture::small).front(), before);
    }
    EXPECT_EQ(description(form.view), QStringLiteral("Radio button: size, large selected"));
    form.click(FormFixture::large); // of this group one must stay on
    EXPECT_EQ(form.value(FormFixture::small), QStringList(QStringLiteral("large")));
    form.key(Qt::Key_Escape);
    EXPECT_EQ(description(form.view), QStringLiteral("Page 1 of 3"));
    form.key(Qt::Key_Space);
    EXPECT_EQ(form.value(FormFixture::small), QStringList(QStringLiteral("large")));
}

TEST(FormKeyboard, choicesAreFoundByTheirFirstLetters) {
    Form form;
    form.click(FormFixture::color);
    form.key(Qt::Key_Escape);
    EXPECT_EQ(form.choices(), nullptr);
    EXPECT_EQ(form.value(FormFixture::color), QStringList(QStringLiteral("red")));
    QTest::keyClick(&form.view, 'b');
    ASSERT_NE(form.choices(), nullptr);
    form.key(Qt::Key_Return);
    EXPECT_EQ(form.value(FormFixture::color), QStringList(QStringLiteral("blue")));
    EXPECT_EQ(description(form.view), QStringLiteral("Combo box: color, Blue"));

    form.click(FormFixture::city);
    form.key(Qt::Key_Down);
    ASSERT_NE(form.choices(), nullptr);
    form.choose(1);
    form.key(Qt::Key_Return);
    EXPECT_EQ(form.value(FormFixture::city), QStringList(QStringLiteral("Oslo")));

    form.click(FormFixture::fruit);
    ASSERT_NE(form.editor(), nullptr);
    form.type(QStringLiteral("ch"));
    form.key(Qt::Key_Return);
    EXPECT_EQ(form.value(FormFixture::fruit), QStringList(QStringLiteral("cherry")));
}
