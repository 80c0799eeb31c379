#include "PageLayout.h"

#include <QRandomGenerator>

#include <gtest/gtest.h>

static PageLayout layoutOf(std::vector<QSizeF> sizes, double scale, QSize view = {800, 600}) {
    PageLayout layout;
    layout.setSizes(std::move(sizes));
    layout.setMetrics({scale, 12, 10, view});
    return layout;
}

TEST(PageLayout, laysPagesInOneCentredColumn) {
    const PageLayout layout = layoutOf({{600, 800}, {300, 400.4}, {1000, 100}}, 1.5);
    EXPECT_EQ(layout.contentSize(), QSizeF(1520, 10 + 1200 + 12 + 601 + 12 + 150 + 10));
    EXPECT_EQ(layout.pageRect(0), QRectF(310, 10, 900, 1200));
    EXPECT_EQ(layout.pageRect(1), QRectF(535, 1222, 450, 601));
    EXPECT_EQ(layout.pageRect(2), QRectF(10, 1835, 1500, 150));
}

TEST(PageLayout, centresAColumnThatIsSmallerThanTheViewOrHasNoPages) {
    const PageLayout layout = layoutOf({{100, 100}}, 1);
    EXPECT_EQ(layout.contentSize(), QSizeF(800, 600));
    EXPECT_EQ(layout.pageRect(0), QRectF(350, 250, 100, 100));
    EXPECT_EQ(layout.pageAtHeight(0), 0);
    EXPECT_EQ(layout.pagesBetween(0, 600), std::pair(0, 1));
    const PageLayout none = layoutOf({}, 1);
    EXPECT_EQ(none.contentSize(), QSizeF(800, 600));
    EXPECT_EQ(none.pageAtHeight(100), -1);
    EXPECT_EQ(none.pagesBetween(0, 600), std::pair(0, 0));
}

// Look-ups are binary searches; here every page is looked at instead.
TEST(PageLayout, findsWhatASearchOfAllPagesFinds) {
    QRandomGenerator random(7);
    std::vector<QSizeF> sizes;
    for (int i = 0; i < 60; ++i)
        sizes.emplace_back(1 + random.bounded(900.0), 1 + random.bounded(900.0));
    const PageLayout layout = layoutOf(sizes, 0.7);
    for (int round = 0; round < 400; ++round) {
        const double top = random.bounded(layout.contentSize().height() + 400) - 200;
        const double bottom = top + 1 + random.bounded(900.0);
        std::vector<int> touched;
        int nearest = 0;
        double least = 1e9;
        for (int i = 0; i < layout.count(); ++i) {
            const QRectF rect = layout.pageRect(i);
            if (rect.top() < bottom && rect.bottom() > top)
                touched.push_back(i);
            const double distance = std::max({rect.top() - top, top - rect.bottom(), 0.0});
            if (distance < least) {
                least = distance;
                nearest = i;
            }
        }
        const auto [first, last] = layout.pagesBetween(top, bottom);
        ASSERT_EQ(last - first, static_cast<int>(touched.size())) << top << " to " << bottom;
        if (!touched.empty()) {
            EXPECT_EQ(first, touched.front());
        }
        const int found = layout.pageAtHeight(top);
        const QRectF rect = layout.pageRect(found);
        EXPECT_LE(std::max({rect.top() - top, top - rect.bottom(), 0.0}), least + 1) << found << " for " << nearest;
    }
}

TEST(PageLayout, countsBeyondWhatAnIntHolds) {
    const std::vector<QSizeF> sizes(100'000, QSizeF(1e6, 1e6));
    const PageLayout layout = layoutOf(sizes, 16);
    const int last = layout.count() - 1;
    EXPECT_EQ(layout.pageRect(last).bottom() + 10, layout.contentSize().height());
    EXPECT_GT(layout.contentSize().height(), 1e12);
    EXPECT_EQ(layout.pageAtHeight(layout.pageRect(70'000).center().y()), 70'000);
    EXPECT_EQ(layout.pageSize(last), QSize(16'000'000, 16'000'000));
    EXPECT_EQ(layoutOf({{1e-9, 1e12}}, 16).pageSize(0).width(), 1);
}
