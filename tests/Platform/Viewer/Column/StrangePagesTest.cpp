#include "PDFDocument.h"
#include "PDFPage.h"
#include "ShownView.h"

#include <QScrollBar>
#include <QSignalSpy>
#include <QTest>

#include <gtest/gtest.h>

TEST(StrangePages, ofAbsurdSizeAreLaidOutAndDrawn) {
    PdfFixture fixture;
    for (const QRectF box : {QRectF(0, 0, 1, 1), QRectF(0, 0, 1e6, 1e6), QRectF(0, 0, 1, 1e6), QRectF(-7, 5, 1e6, 3),
                             QRectF(0, 0, 612, 792)}) {
        const auto number = [](double value) { return QByteArray::number(value, 'f', 0) + ' '; };
        const QByteArray corner = number(box.left()) + number(box.top());
        const int page =
            fixture.addPageWithContent("0 g " + corner + number(box.width()) + number(box.height()) + "re f");
        fixture.setPageKey(page, "/MediaBox", '[' + corner + number(box.right()) + number(box.bottom()) + ']');
    }
    ShownView view(documentOf(fixture));
    for (const bool fits : {true, false}) {
        for (int i = 0; i < 5; ++i) {
            view.goToPage(view.page(i));
            if (fits)
                view.setAutoScales(true);
            else
                view.setScaleFactor(view.maxScaleFactor());
            view.goToPage(view.page(i));
            view.waitUntilSharp();
            EXPECT_EQ(view.currentPageIndex(), i);
            const QRectF box = view.convertFromPage(view.page(i)->bounds(PDFDisplayBox::cropBox), *view.page(i));
            const QRectF shown = box & QRectF(view.viewport()->rect());
            ASSERT_FALSE(shown.isEmpty()) << i << fits;
            EXPECT_EQ(
                view.picture().pixelColor((shown.center() * view.devicePixelRatioF() - QPointF(0.5, 0.5)).toPoint()),
                QColor(Qt::black))
                << "page " << i << " at " << view.scaleFactor();
        }
    }
}

// Sizes are estimated from the first page until they are known; what is on the screen has its real size at once.
TEST(StrangePages, ofManySizesDontMoveWhatIsReadWhenTheyBecomeKnown) {
    PdfFixture fixture;
    for (int i = 0; i < 400; ++i)
        fixture.addPage({QStringLiteral("page")}, i % 3 == 0 ? QSizeF(612, 792) : QSizeF(300 + i, 200 + 2 * i));
    ShownView view(documentOf(fixture));
    view.goToPage(view.page(200));
    const auto boxOf = [&](int index) {
        return view.convertFromPage(view.page(index)->bounds(PDFDisplayBox::cropBox), *view.page(index));
    };
    const QRectF before = boxOf(200);
    EXPECT_NEAR(before.height() / before.width(), 600.0 / 500, 0.01);
    const int estimated = view.verticalScrollBar()->maximum();
    view.waitUntil([&] { return view.verticalScrollBar()->maximum() != estimated; }, "the survey");
    view.waitUntilStill();
    EXPECT_EQ(boxOf(200), before);
    double height = 24;
    for (int i = 0; i < 400; ++i)
        height += boxOf(i).height() + (i > 0 ? 12 : 0);
    EXPECT_NEAR(view.verticalScrollBar()->maximum() + view.verticalScrollBar()->pageStep(), height, 1);

    // Up through pages that were never shown.
    for (int i = 0; i < 40; ++i) {
        const auto page = view.currentPage();
        const double top = view.convertFromPage(QPointF(0, 0), *page).y();
        view.wheel({200, 200}, {0, 15});
        EXPECT_NEAR(view.convertFromPage(QPointF(0, 0), *page).y(), top + 15, 1);
    }
}

TEST(StrangePages, thatCantBeReadAreShownAsPaper) {
    PdfFixture fixture;
    fixture.addPage({QStringLiteral("fine")});
    const int broken = fixture.addPage({QStringLiteral("broken")});
    fixture.setPageKey(broken, "/Contents", "42");
    fixture.setPageKey(broken, "/MediaBox", "(nonsense)");
    fixture.addPage({QStringLiteral("fine too")});
    ShownView view(documentOf(fixture));
    view.setScaleFactor(0.3);
    view.waitUntilSharp();
    const QRectF box = view.convertFromPage(view.page(1)->bounds(PDFDisplayBox::cropBox), *view.page(1));
    EXPECT_EQ(view.picture().pixelColor(((box.topLeft() + QPointF(5, 5)) * view.devicePixelRatioF()).toPoint()),
              QColor(Qt::white));
    EXPECT_EQ(view.visiblePages().size(), 3U);
}

TEST(StrangePages, manyOfThemStayWithinTheMemoryAllowed) {
    ShownView view(sampleDocument(25));
    constexpr qint64 limit = 12 << 20;
    constexpr qint64 standIns = 12 << 20;
    view.setTileCacheLimit(limit);
    qint64 most = 0;
    for (int i = 0; i < 25; ++i) {
        view.goToPage(view.page(i));
        view.waitUntilSharp();
        most = std::max(most, view.tileCacheBytes());
    }
    EXPECT_LE(most, limit + standIns);
    EXPECT_GT(most, limit / 2);

    view.clearCaches();
    EXPECT_TRUE(view.isSharp()) << "what is on the screen stays";
    EXPECT_LT(view.tileCacheBytes(), most / 2);

    // Less than one screen: it must come to rest all the same.
    view.setTileCacheLimit(1);
    view.goToPage(view.page(10));
    view.waitUntilSharp();
    QSignalSpy drawn(&view, &PDFView::pageDrawn);
    QTest::qWait(200);
    EXPECT_LE(drawn.count(), 2);
}

TEST(StrangePages, aViewWithoutRoomIsFine) {
    ShownView view(sampleDocument(3), {650, 700});
    view.resize(20, 1);
    QTest::qWait(0);
    view.goToPage(view.page(2));
    view.resize(650, 700);
    view.waitUntilSharp();
    EXPECT_EQ(view.currentPageIndex(), 2);
}
