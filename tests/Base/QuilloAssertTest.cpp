#include "QuilloAssert.h"

#include <gtest/gtest.h>

TEST(QuilloAssertDeathTest, stopsWithItsSentenceInEveryBuild) {
    testing::FLAGS_gtest_death_test_style = "threadsafe";
    const int pages = 0;
    EXPECT_DEATH(QUILLO_ASSERT(pages > 0, "A document has a page."), "A document has a page\\. \\(pages > 0\\)");
}

TEST(QuilloAssert, evaluatesItsConditionOnceAndIsOneStatement) {
    int evaluated = 0;
    if (evaluated == 0)
        QUILLO_ASSERT(++evaluated == 1, "The condition runs once.");
    else
        FAIL();
    EXPECT_EQ(evaluated, 1);
}
