#include "PDFDestination.h"
#include "PDFDocument.h"
#include "PDFPage.h"
#include "PDFSelection.h"
#include "ShownView.h"

#include <QAction>
#include <QMenu>
#include <QScrollBar>
#include <QSignalSpy>
#include <QTest>

#include <gtest/gtest.h>

TEST(Navigation, fitsTheWidthAndFollowsIt) {
    ShownView view(sampleDocument(3));
    const auto margins = [&] {
        const QRectF page = view.convertFromPage(view.page(0)->bounds(PDFDisplayBox::cropBox), *view.page(0));
        return std::pair(page.left(), view.viewport()->width() - page.right());
    };
    const auto [left, right] = margins();
    EXPECT_NEAR(left, right, 1);
    EXPECT_GT(left, 0);
    EXPECT_LT(left, 20);
    EXPECT_DOUBLE_EQ(view.scaleFactor(), view.scaleFactorForSizeToFit());

    view.goToPage(view.page(1));
    const double former = view.scaleFactor();
    view.resize(900, 500);
    QTest::qWait(0);
    EXPECT_GT(view.scaleFactor(), former);
    EXPECT_NEAR(margins().first, left, 1);
    EXPECT_EQ(view.currentPageIndex(), 1);

    view.setScaleFactor(0.5);
    EXPECT_FALSE(view.autoScales());
    view.resize(700, 500);
    QTest::qWait(0);
    EXPECT_DOUBLE_EQ(view.scaleFactor(), 0.5);
    view.setScaleFactor(view.scaleFactorForSizeToFit());
    EXPECT_TRUE(view.autoScales());
}

TEST(Navigation, goesToPagesAndTellsWhichIsCurrent) {
    ShownView view(sampleDocument(9));
    QSignalSpy changes(&view, &PDFView::pageChanged);
    EXPECT_EQ(view.currentPageIndex(), 0);
    EXPECT_FALSE(view.canGoToPreviousPage());
    view.goToNextPage();
    view.goToNextPage();
    EXPECT_EQ(view.currentPage(), view.page(2));
    EXPECT_EQ(changes.count(), 2);
    EXPECT_FALSE(view.canGoBack()) << "turning pages is no jump";
    view.goToPreviousPage();
    EXPECT_EQ(view.currentPageIndex(), 1);
    view.goToLastPage();
    EXPECT_EQ(view.currentPageIndex(), 8);
    EXPECT_FALSE(view.canGoToNextPage());
    view.goToFirstPage();
    EXPECT_EQ(view.verticalScrollBar()->value(), 0);
    EXPECT_EQ(view.visiblePages().front(), view.page(0));

    // Small pages of which many are in sight: each can still be gone to, one after the other.
    view.setScaleFactor(0.1);
    for (int i = 0; i < 9; ++i) {
        view.goToPage(view.page(i));
        EXPECT_EQ(view.currentPageIndex(), i);
    }
}

TEST(Navigation, jumpsCanBeUndone) {
    ShownView view(sampleDocument(9));
    view.verticalScrollBar()->setValue(137);
    const QPointF point(200, 150);
    const QPointF left = view.convertToPage(point, *view.page(0));
    view.goToPage(view.page(6));
    view.goToDestination(PDFDestination(view.page(3), QPointF(72, 400)));
    EXPECT_NEAR(view.convertFromPage({72, 400}, *view.page(3)).y(), 0, 1);
    ASSERT_TRUE(view.canGoBack());

    view.goBack();
    EXPECT_EQ(view.currentPageIndex(), 6);
    view.goBack();
    EXPECT_LT((view.convertToPage(point, *view.page(0)) - left).manhattanLength(), 1);
    EXPECT_FALSE(view.canGoBack());
    EXPECT_FALSE(view.action(PDFViewCommand::goBack)->isEnabled());
    view.goForward();
    view.goForward();
    EXPECT_EQ(view.currentPageIndex(), 3);
    EXPECT_FALSE(view.canGoForward());
    view.goBack();
    view.goToPage(view.page(1));
    EXPECT_FALSE(view.canGoForward()) << "a new jump ends the way forward";
}

TEST(Navigation, destinationsMayLackPartsOrLieOutside) {
    PdfFixture fixture;
    fixture.addPages(3, QStringLiteral("text"));
    fixture.setPageKey(1, "/Rotate", "90");
    fixture.setPageKey(1, "/MediaBox", "[100 200 712 992]");
    ShownView view(documentOf(fixture));

    view.goToDestination(PDFDestination(view.page(2), std::nullopt, std::nullopt));
    EXPECT_EQ(view.currentPageIndex(), 2);
    view.goToDestination(PDFDestination(view.page(0), std::nullopt, 5000.0));
    EXPECT_EQ(view.currentPageIndex(), 0);
    EXPECT_NEAR(view.convertFromPage({0, 792}, *view.page(0)).y(), 0, 1);

    // The left edge of the turned page is its upper one as shown.
    view.goToDestination(PDFDestination(view.page(1), 150.0, 300.0, 2.0));
    EXPECT_DOUBLE_EQ(view.scaleFactor(), 2);
    const QPointF corner = view.convertFromPage({150, 300}, *view.page(1));
    EXPECT_NEAR(corner.x(), 0, 1);
    EXPECT_NEAR(corner.y(), 0, 1);
}

TEST(Navigation, keysScrollAsTheyAreTold) {
    ShownView view(sampleDocument(4));
    const auto value = [&] {
        view.waitUntilStill();
        return view.verticalScrollBar()->value();
    };
    view.key(Qt::Key_Space);
    const int screen = value();
    EXPECT_GT(screen, view.viewport()->height() / 2);
    EXPECT_LT(screen, view.viewport()->height());
    view.key(Qt::Key_PageDown);
    EXPECT_EQ(value(), 2 * screen);
    view.key(Qt::Key_Space, Qt::ShiftModifier);
    view.key(Qt::Key_PageUp);
    EXPECT_EQ(value(), 0);
    view.key(Qt::Key_Down);
    const int arrow = value();
    EXPECT_GT(arrow, 10);
    view.key(Qt::Key_Up);
    EXPECT_EQ(value(), 0);
    view.key(Qt::Key_Right);
    EXPECT_EQ(view.currentPageIndex(), 1);
    view.key(Qt::Key_End);
    EXPECT_NEAR(view.convertFromPage({0, 0}, *view.page(1)).y(), view.viewport()->height() - 12, 1);
    view.key(Qt::Key_Home);
    EXPECT_NEAR(view.convertFromPage({0, 792}, *view.page(1)).y(), 12, 1);
    view.goToLastPage();
    EXPECT_EQ(view.currentPageIndex(), 3);
    EXPECT_NEAR(view.convertFromPage({0, 792}, *view.page(3)).y(), 12, 1);
    view.goToFirstPage();
    EXPECT_EQ(value(), 0);

    // When the page is wider than the view the arrows move to the side.
    view.setScaleFactor(3);
    const int before = view.horizontalScrollBar()->value();
    view.key(Qt::Key_Right);
    view.waitUntilStill();
    EXPECT_GT(view.horizontalScrollBar()->value(), before);
}

TEST(Navigation, bringsASelectionIntoSight) {
    ShownView view(sampleDocument(8));
    const int offset = view.offsetOf(5, QStringLiteral("p6 line 10"));
    const PDFSelection selection({{view.page(5), offset, offset + 4}});
    view.goToSelection(selection);
    EXPECT_TRUE(QRectF(view.viewport()->rect()).contains(view.on(5, offset)));
    const int value = view.verticalScrollBar()->value();
    view.goToSelection(selection);
    EXPECT_EQ(view.verticalScrollBar()->value(), value) << "what is in sight needs no scrolling";
    EXPECT_TRUE(view.canGoBack());
}

TEST(Navigation, pagesThatDifferByASliverLeaveTheArrowsAlone) {
    PdfFixture fixture;
    fixture.addPage({QStringLiteral("One")}, {612, 792});
    fixture.addPage({QStringLiteral("Two")}, {613, 792});
    ShownView view(documentOf(fixture));
    view.key(Qt::Key_Right);
    EXPECT_EQ(view.currentPageIndex(), 1);
}

TEST(Navigation, theKeyboardOpensTheMenuWhereTheSelectionIs) {
    ShownView view(sampleDocument(1));
    const auto openedAt = [&] {
        view.key(Qt::Key_F10, Qt::ShiftModifier);
        auto* menu = view.findChild<QMenu*>(QStringLiteral("pdfViewMenu"));
        const QPoint at = menu ? view.viewport()->mapFromGlobal(menu->pos()) : QPoint();
        delete menu;
        return at;
    };
    EXPECT_NEAR(openedAt().y(), view.viewport()->rect().center().y(), 1);
    view.drag(view.before(0, 0), view.before(0, 10));
    EXPECT_NEAR(openedAt().y(), view.on(0, 5).y(), 4);
}
