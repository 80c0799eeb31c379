#include "RelativeDateTimeFormatter.h"

#include <QDateTime>

#include <gtest/gtest.h>

TEST(RelativeDateTimeFormatter, countsInTheLargestUnitThatHasPassed) {
    const QDateTime now(QDate(2024, 3, 31), QTime(12, 0), Qt::UTC);
    const std::pair<QDateTime, const char*> cases[] = {
        {now.addMSecs(-900), "0 sec. ago"},
        {now.addSecs(-59), "59 sec. ago"},
        {now.addSecs(-60), "1 min. ago"},
        {now.addSecs(-3599), "59 min. ago"},
        {now.addSecs(-3600), "1 hr. ago"},
        {now.addSecs(-86399), "23 hr. ago"},
        {now.addDays(-1), "1 day ago"},
        {now.addDays(-6), "6 days ago"},
        {now.addDays(-7), "1 wk. ago"},
        {now.addDays(-30), "4 wk. ago"},
        // February ends on the 29th: a month before the 31st of March.
        {QDateTime(QDate(2024, 2, 29), QTime(12, 0), Qt::UTC), "1 mo. ago"},
        {QDateTime(QDate(2023, 4, 1), QTime(12, 0), Qt::UTC), "11 mo. ago"},
        {QDateTime(QDate(2023, 3, 31), QTime(12, 0), Qt::UTC), "1 yr. ago"},
        {QDateTime(QDate(2014, 3, 31), QTime(12, 0), Qt::UTC), "10 yr. ago"},
        {now.addSecs(120), "in 2 min."},
    };
    for (const auto& [date, text] : cases)
        EXPECT_EQ(RelativeDateTimeFormatter::localizedString(date, now), QLatin1String(text)) << text;
}
