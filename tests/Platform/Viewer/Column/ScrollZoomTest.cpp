#include "PDFDocument.h"
#include "PDFPage.h"
#include "ShownView.h"

#include <QNativeGestureEvent>
#include <QPointingDevice>
#include <QScrollBar>
#include <QSignalSpy>
#include <QTest>

#include <cmath>

#include <gtest/gtest.h>

TEST(ScrollZoom, theWheelZoomsAtThePointer) {
    ShownView view(sampleDocument(6));
    view.goToPage(view.page(3));
    const QPointF points[] = {{120, 90}, {600, 500}, {300, 650}};
    for (const QPointF point : points) {
        const auto page = view.pageAt(point, true);
        const QPointF under = view.convertToPage(point, *page);
        for (const int turn : {120, 120, 15, 7, -120, 120, -240, 120, 120}) {
            view.wheel(point, {0, turn}, Qt::ControlModifier);
            const QPointF now = view.convertFromPage(under, *page);
            EXPECT_NEAR(now.y(), point.y(), 1.01) << view.scaleFactor();
            // A column that is narrower than the view is centred instead.
            EXPECT_TRUE(view.horizontalScrollBar()->maximum() == 0 || std::abs(now.x() - point.x()) < 1.01)
                << view.scaleFactor();
        }
    }
    EXPECT_FALSE(view.autoScales());
}

TEST(ScrollZoom, aPinchZoomsAtItsMiddle) {
    ShownView view(sampleDocument(3));
    view.setScaleFactor(2);
    view.goToPage(view.page(1));
    const QPointF point(250, 300);
    const QPointF under = view.convertToPage(point, *view.page(1));
    const double former = view.scaleFactor();
    for (int i = 0; i < 20; ++i) {
        QNativeGestureEvent event(Qt::ZoomNativeGesture, QPointingDevice::primaryPointingDevice(), 2, point, point,
                                  view.viewport()->mapToGlobal(point), 0.03, {});
        QCoreApplication::sendEvent(view.viewport(), &event);
    }
    EXPECT_NEAR(view.scaleFactor(), former * std::pow(1.03, 20), 1e-6);
    EXPECT_LT((view.convertFromPage(under, *view.page(1)) - point).manhattanLength(), 2);
}

TEST(ScrollZoom, stopsAtTheLimits) {
    ShownView view(sampleDocument(2));
    QSignalSpy changes(&view, &PDFView::scaleChanged);
    view.setScaleFactor(100);
    EXPECT_DOUBLE_EQ(view.scaleFactor(), view.maxScaleFactor());
    const auto count = changes.count();
    view.zoomAt({100, 100}, 1.2);
    EXPECT_EQ(changes.count(), count);
    view.zoomAt({100, 100}, 0.001);
    EXPECT_DOUBLE_EQ(view.scaleFactor(), view.minScaleFactor());
    view.setScaleFactor(std::numeric_limits<double>::quiet_NaN());
    EXPECT_DOUBLE_EQ(view.scaleFactor(), view.minScaleFactor());
    view.setAutoScales(true);
    EXPECT_DOUBLE_EQ(view.scaleFactor(), view.scaleFactorForSizeToFit());
    view.setMaxScaleFactor(0.4);
    EXPECT_DOUBLE_EQ(view.scaleFactorForSizeToFit(), 0.4);
    EXPECT_DOUBLE_EQ(view.scaleFactor(), 0.4);
    view.setScaleFactor(0.2);
    view.setMinScaleFactor(0.3);
    EXPECT_DOUBLE_EQ(view.scaleFactor(), 0.3);
}

TEST(ScrollZoom, notchesGlideAndAddUp) {
    ShownView view(sampleDocument(6));
    view.wheel({100, 100}, {0, -120});
    view.waitUntilStill();
    const int one = view.verticalScrollBar()->value();
    EXPECT_GT(one, 60);
    for (int i = 0; i < 3; ++i)
        view.wheel({100, 100}, {0, -120});
    view.waitUntilStill();
    EXPECT_EQ(view.verticalScrollBar()->value(), 4 * one);

    // Fine steps of a touch pad move at once.
    view.wheel({100, 100}, {0, -15});
    EXPECT_EQ(view.verticalScrollBar()->value(), 4 * one + one / 8);

    QSignalSpy moves(&view, &PDFView::visibleAreaChanged);
    view.wheel({100, 100}, {0, -120});
    view.waitUntilStill();
    EXPECT_GT(moves.count(), 1);
}

TEST(ScrollZoom, theWheelMovesToTheSideWithShift) {
    ShownView view(sampleDocument(2));
    view.setScaleFactor(4);
    const int before = view.horizontalScrollBar()->value();
    const int height = view.verticalScrollBar()->value();
    view.wheel({100, 100}, {0, -120}, Qt::ShiftModifier);
    view.waitUntilStill();
    EXPECT_GT(view.horizontalScrollBar()->value(), before);
    EXPECT_EQ(view.verticalScrollBar()->value(), height);
}

TEST(ScrollZoom, theMiddleButtonMovesThePages) {
    ShownView view(sampleDocument(2));
    view.setScaleFactor(4);
    view.goToPage(view.page(1));
    const QPointF held = view.convertToPage(QPointF(200, 200), *view.page(1));
    QTest::mousePress(view.viewport(), Qt::MiddleButton, {}, {200, 200});
    QTest::mouseMove(view.viewport(), {180, 230});
    QTest::mouseMove(view.viewport(), {150, 120});
    const auto expectHeld = [&] {
        const QPointF now = view.convertFromPage(held, *view.page(1));
        EXPECT_NEAR(now.x(), 150, 1);
        EXPECT_NEAR(now.y(), 120, 1);
    };
    expectHeld();
    QTest::mouseRelease(view.viewport(), Qt::MiddleButton, {}, {150, 120});
    QTest::mouseMove(view.viewport(), {300, 300});
    expectHeld();
    EXPECT_FALSE(view.hasSelection());
    // The second of two quick presses.
    for (const auto& [type, x] : {std::pair(QEvent::MouseButtonDblClick, 150), {QEvent::MouseMove, 140}}) {
        QMouseEvent again(type, QPointF(x, 120), view.viewport()->mapToGlobal(QPointF(x, 120)), Qt::MiddleButton,
                          Qt::MiddleButton, {});
        QApplication::sendEvent(view.viewport(), &again);
    }
    EXPECT_NEAR(view.convertFromPage(held, *view.page(1)).x(), 140, 1);
}

TEST(ScrollZoom, keepsThePlaceWhenTheWindowOrTheScaleChanges) {
    ShownView view(sampleDocument(20));
    view.goToPage(view.page(11));
    view.verticalScrollBar()->setValue(view.verticalScrollBar()->value() + 210);
    const QPointF upper = view.convertToPage(QPointF(view.viewport()->width() / 2.0, 0), *view.page(11));
    for (const QSize size : {QSize(900, 700), QSize(500, 400), QSize(1200, 900), QSize(650, 700)}) {
        view.resize(size);
        QTest::qWait(0);
        EXPECT_NEAR(view.convertFromPage(upper, *view.page(11)).y(), 0, 1.5) << size.width();
    }
    view.setDisplaysPageBreaks(false);
    EXPECT_NEAR(view.convertFromPage(upper, *view.page(11)).y(), 0, 1.5);
    const QRectF above = view.convertFromPage(view.page(10)->bounds(PDFDisplayBox::cropBox), *view.page(10));
    const QRectF below = view.convertFromPage(view.page(11)->bounds(PDFDisplayBox::cropBox), *view.page(11));
    EXPECT_NEAR(above.bottom(), below.top(), 0.01);
    EXPECT_NEAR(below.left(), 0, 1);
    view.goToPage(view.page(3));
    for (const double share : {0.2, 0.8}) {
        view.verticalScrollBar()->setValue(int((3 + share) * below.height()));
        EXPECT_EQ(view.currentPageIndex(), share < 0.5 ? 3 : 4) << "of which most is seen";
    }
}

TEST(ScrollZoom, viewAndPagePointsConvertBothWays) {
    PdfFixture fixture;
    for (const char* turn : {"0", "90", "180", "270"}) {
        const int page = fixture.addPage({QStringLiteral("x")});
        fixture.setPageKey(page, "/Rotate", turn);
        fixture.setPageKey(page, "/CropBox", "[50 100 400 700]");
        fixture.setPageKey(page, "/UserUnit", "1.5");
    }
    ShownView view(documentOf(fixture));
    view.setScaleFactor(0.4);
    for (int i = 0; i < 4; ++i) {
        const auto page = view.page(i);
        const QRectF box = view.convertFromPage(page->bounds(PDFDisplayBox::cropBox), *page);
        EXPECT_NEAR(box.width(), page->displaySize(PDFDisplayBox::cropBox).width() * 0.4, 1);
        const QPointF corner = view.convertFromPage(QPointF(50, 100), *page) - box.topLeft();
        const QPointF onPage = page->displayTransform(PDFDisplayBox::cropBox).map(QPointF(50, 100)) * 0.4;
        EXPECT_LT((corner - onPage).manhattanLength(), 2);
        const QPointF back = view.convertToPage(view.convertFromPage(QPointF(123, 456), *page), *page);
        EXPECT_LT((back - QPointF(123, 456)).manhattanLength(), 0.01);
        EXPECT_EQ(view.pageAt(box.center(), false), page);
    }
    EXPECT_EQ(view.pageAt({1, 300}, false), nullptr);
    EXPECT_NE(view.pageAt({1, 300}, true), nullptr);
    EXPECT_EQ(view.convertToPage(QPointF(5, 5), *sampleDocument(1)->page(0)), QPointF());
}
