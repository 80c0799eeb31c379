#include "Logging.h"

#include <gtest/gtest.h>

#include <stdexcept>

TEST(Logging, isSilentUntilARuleTurnsACategoryOn) {
    EXPECT_FALSE(Logging::pdf().isCriticalEnabled());
    EXPECT_FALSE(Logging::ai().isWarningEnabled());
    QLoggingCategory::setFilterRules(QStringLiteral("quillo.pdf=true"));
    EXPECT_TRUE(Logging::pdf().isWarningEnabled());
    EXPECT_FALSE(Logging::ai().isWarningEnabled());
    QLoggingCategory::setFilterRules({});
}

TEST(Logging, namesEveryCauseFromTheOutermostIn) {
    try {
        try {
            try {
                throw 7;
            } catch (...) {
                std::throw_with_nested(std::runtime_error("no cross-reference table"));
            }
        } catch (const std::exception&) {
            std::throw_with_nested(std::logic_error("The file couldn’t be saved."));
        }
    } catch (const std::exception& error) {
        const QString all =
            QStringLiteral("The file couldn’t be saved. < no cross-reference table < an exception of unknown type");
        EXPECT_EQ(Logging::causes(error), all);
        EXPECT_EQ(Logging::currentCauses(), all);
        return;
    }
    FAIL();
}
