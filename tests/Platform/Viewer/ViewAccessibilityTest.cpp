#include "PDFDocument.h"
#include "PDFPage.h"
#include "PDFSelection.h"
#include "PageText.h"
#include "ShownView.h"

#include <QAccessible>
#include <QAction>
#include <QTest>

#include <gtest/gtest.h>

TEST(ViewAccessibility, tellsTheDocumentsTextAndPlace) {
    ShownView view(sampleDocument(4));
    QAccessibleInterface* found = QAccessible::queryAccessibleInterface(&view);
    ASSERT_NE(found, nullptr);
    EXPECT_EQ(found->role(), QAccessible::Document);
    EXPECT_FALSE(found->text(QAccessible::Name).isEmpty());
    EXPECT_EQ(found->text(QAccessible::Description), QStringLiteral("Page 1 of 4"));
    view.goToPage(view.page(2));
    EXPECT_EQ(found->text(QAccessible::Description), QStringLiteral("Page 3 of 4"));

    QAccessibleTextInterface* text = found->textInterface();
    ASSERT_NE(text, nullptr);
    EXPECT_EQ(text->characterCount(), view.page(2)->string().size());
    EXPECT_EQ(text->text(0, 6), QStringLiteral("Page 3"));
    const QRect rect = text->characterRect(5);
    EXPECT_TRUE(rect.contains(view.viewport()->mapToGlobal(view.on(2, 5)).toPoint()));
    EXPECT_EQ(text->offsetAtPoint(rect.center()), 5);
    EXPECT_EQ(text->offsetAtPoint(view.viewport()->mapToGlobal(QPoint(1, 1))), -1);

    text->setSelection(0, 0, 6);
    EXPECT_EQ(view.selected(), QStringLiteral("Page 3"));
    int start = -1;
    int end = -1;
    text->selection(0, &start, &end);
    EXPECT_EQ(std::pair(start, end), std::pair(0, 6));
    text->removeSelection(0);
    EXPECT_EQ(text->selectionCount(), 0);

    PdfFixture hyphenated;
    hyphenated.addPage({QStringLiteral("An exam-"), QStringLiteral("ple")});
    ShownView other(documentOf(hyphenated));
    QAccessibleTextInterface* words = QAccessible::queryAccessibleInterface(&other)->textInterface();
    EXPECT_EQ(words->text(0, -1), QStringLiteral("An example"));
    const int secondLine = other.offsetOf(0, QStringLiteral("ple"));
    EXPECT_TRUE(words->characterRect(7).contains(other.viewport()->mapToGlobal(other.on(0, secondLine)).toPoint()));
    words->setSelection(0, 3, 10);
    EXPECT_EQ(other.selectedRanges(*other.page(0)), (std::vector<std::pair<int, int>>{{3, secondLine + 3}}));

    view.setScaleFactor(8);
    const int last = view.offsetOf(2, QStringLiteral("p3 line 10"));
    text->scrollToSubstring(last, last + 2);
    EXPECT_TRUE(view.viewport()->rect().contains(view.on(2, last).toPoint()));
}

TEST(ViewAccessibility, everyCommandHasANameAndSaysWhenItWorks) {
    ShownView view(sampleDocument(2));
    for (const QAction* action : view.actions()) {
        EXPECT_FALSE(action->text().isEmpty());
        EXPECT_FALSE(action->objectName().isEmpty());
    }
    const auto enabled = [&](PDFViewCommand command) { return view.action(command)->isEnabled(); };
    EXPECT_FALSE(enabled(PDFViewCommand::copy));
    EXPECT_FALSE(enabled(PDFViewCommand::goToPreviousPage));
    view.action(PDFViewCommand::selectAll)->trigger();
    EXPECT_TRUE(enabled(PDFViewCommand::copy));
    view.action(PDFViewCommand::goToNextPage)->trigger();
    EXPECT_EQ(view.currentPageIndex(), 1);
    EXPECT_FALSE(enabled(PDFViewCommand::goToNextPage));
    view.setDocument(nullptr);
    EXPECT_FALSE(enabled(PDFViewCommand::selectAll));
}

TEST(ViewAccessibility, theKeyboardsFocusIsSeenThePointersIsNot) {
    ShownView view(sampleDocument(1));
    view.waitUntilSharp();
    view.setBackgroundColor(Qt::white);
    const auto edge = [&] { return view.picture().pixelColor(0, 300); };
    view.clearFocus();
    view.setFocus(Qt::MouseFocusReason);
    EXPECT_EQ(edge(), QColor(Qt::white));
    view.clearFocus();
    view.setFocus(Qt::TabFocusReason);
    EXPECT_NE(edge(), QColor(Qt::white));
}
