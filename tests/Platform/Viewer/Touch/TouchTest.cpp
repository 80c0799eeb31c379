#include "ShownView.h"

#include "PDFPage.h"

#include <QMenu>
#include <QPointingDevice>
#include <QTest>

#include <gtest/gtest.h>

namespace {

QPointingDevice* screen() {
    static QPointingDevice* const device = QTest::createTouchDevice();
    return device;
}

/// A hand on the screen of a view. Points are view points.
class Hand {
public:
    explicit Hand(PDFView& view) : m_view(view) {}

    void press(QPoint at) {
        touch([&](Touch& event) { event.press(0, in(m_first = at)); });
    }
    void pressSecond(QPoint at) {
        touch([&](Touch& event) { event.move(0, in(m_first)).press(1, in(at)); });
    }
    void move(QPoint at) {
        touch([&](Touch& event) { event.move(0, in(m_first = at)); });
    }
    void move(QPoint first, QPoint second) {
        touch([&](Touch& event) { event.move(0, in(m_first = first)).move(1, in(second)); });
    }
    void release(QPoint at) {
        touch([&](Touch& event) { event.release(0, in(at)); });
    }
    void releaseSecond(QPoint at) {
        touch([&](Touch& event) { event.move(0, in(m_first)).release(1, in(at)); });
    }

private:
    using Touch = QTest::QTouchEventWidgetSequence;

    QPoint in(QPoint viewPoint) const { return m_view.viewport()->mapTo(&m_view, viewPoint); }

    template <typename Act>
    void touch(Act act) {
        QTest::qWait(8); // the speed of a fling comes from the time between touches
        Touch event = QTest::touchEvent(&m_view, screen(), false);
        act(event);
        event.commit();
    }

    PDFView& m_view;
    QPoint m_first; ///< of the first finger, which stays when the second comes and goes
};

double top(PDFView& view, const std::shared_ptr<PDFPage>& page) {
    return view.convertFromPage(QPointF(0, 0), *page).y();
}

TEST(Touch, aFingerScrollsWithThePageUnderItAndFlings) {
    ShownView view(sampleDocument(20));
    view.setScaleFactor(1);
    Hand hand(view);
    /// Moves the page up by a finger and lets go. True when it goes on by itself.
    const auto flick = [&] {
        view.goToPage(view.page(3));
        const double before = top(view, view.page(3));
        hand.press({200, 400});
        hand.move({200, 398}); // a finger is never quite still
        EXPECT_NEAR(top(view, view.page(3)), before, 0.5);
        for (int y = 380; y >= 200; y -= 20)
            hand.move({202, y});
        const double atRelease = top(view, view.page(3));
        EXPECT_NEAR(atRelease, before - 180, 25) << "the page goes with the finger";
        hand.release({202, 200});
        return QTest::qWaitFor([&] { return top(view, view.page(3)) < atRelease - 60; }, 1000);
    };
    // On a machine that is busy elsewhere a flick may be too slow for a fling.
    bool flings = false;
    for (int attempt = 0; attempt < 20 && !flings; ++attempt)
        flings = flick();
    EXPECT_TRUE(flings);
    EXPECT_FALSE(view.hasSelection());

    // A finger put down stops it, and is no click.
    hand.press({200, 300});
    const double stopped = top(view, view.page(3));
    hand.release({200, 300});
    QTest::qWait(100);
    EXPECT_NEAR(top(view, view.page(3)), stopped, 1);
}

TEST(Touch, twoFingersZoomAtTheirMiddleAndMoveThePage) {
    ShownView view(sampleDocument(3));
    view.setScaleFactor(2); // wider than the view, which would centre it
    view.goToPage(view.page(1));
    const QPointF middle(260, 300);
    const QPointF under = view.convertToPage(middle, *view.page(1));
    Hand hand(view);
    hand.press({210, 300});
    hand.pressSecond({310, 300});
    for (int i = 1; i <= 10; ++i)
        hand.move(QPoint(210 - 5 * i, 300 + 2 * i), QPoint(310 + 5 * i, 300 + 2 * i));
    EXPECT_NEAR(view.scaleFactor(), 4, 0.1);
    const QPointF now = view.convertFromPage(under, *view.page(1));
    EXPECT_NEAR(now.x(), middle.x(), 3);
    EXPECT_NEAR(now.y(), middle.y() + 20, 3);

    // The finger that stays doesn't pull the page along.
    hand.releaseSecond({360, 320});
    const double before = top(view, view.page(1));
    hand.move({160, 100});
    hand.release({160, 100});
    EXPECT_NEAR(top(view, view.page(1)), before, 0.5);
}

TEST(Touch, aTapIsAClickAndTwoSelectAWord) {
    ShownView view(sampleDocument(1));
    const QPoint onText = view.on(0, 2).toPoint();
    Hand hand(view);
    for (int i = 0; i < 2; ++i) {
        EXPECT_FALSE(view.hasSelection());
        hand.press(onText);
        hand.release(onText);
    }
    EXPECT_EQ(view.selected(), QStringLiteral("Page"));
    hand.press({5, 5});
    hand.release({5, 5});
    EXPECT_FALSE(view.hasSelection()) << "a tap elsewhere drops the selection";
}

TEST(Touch, aRestingFingerOpensTheMenu) {
    ShownView view(sampleDocument(1));
    Hand hand(view);
    hand.press({100, 100});
    EXPECT_TRUE(QTest::qWaitFor([&] { return view.findChild<QMenu*>(QStringLiteral("pdfViewMenu")) != nullptr; }));
    hand.release({100, 100});
    view.findChild<QMenu*>(QStringLiteral("pdfViewMenu"))->close();
}

} // namespace
