#include "GraphemeClusters.h"

#include <QString>

#include <gtest/gtest.h>

TEST(GraphemeClustersTest, CountsClustersAlsoFarIntoALongText) {
    const QString family = QStringLiteral("👨‍👩‍👧");
    const QString accented = QStringLiteral("e\u0301");
    EXPECT_EQ(GraphemeClusters::count(family + accented + QStringLiteral("x")), 3);
    QString text;
    for (int i = 0; i < 300; ++i)
        text += family;
    EXPECT_EQ(GraphemeClusters::endOfFirst(text, 250), 250 * family.size());
    EXPECT_EQ(GraphemeClusters::endOfFirst(text, 300), text.size());
    EXPECT_EQ(GraphemeClusters::before(text, text.size(), 250), 50 * family.size());
    EXPECT_EQ(GraphemeClusters::before(text, 2 * family.size(), 3), 0);
    EXPECT_EQ(GraphemeClusters::after(text, text.size() + 7, 3), text.size());
}
