#include "RelativeDateTimeFormatter.h"

#include <QDateTime>

static constexpr qint64 secondsPerMinute = 60;
static constexpr qint64 secondsPerHour = 60 * secondsPerMinute;
static constexpr qint64 secondsPerDay = 24 * secondsPerHour;
static constexpr qint64 daysPerWeek = 7;
static constexpr int monthsPerYear = 12;

/// Whole months of the calendar.
static int monthsBetween(const QDateTime& earlier, const QDateTime& later) {
    int months =
        (later.date().year() - earlier.date().year()) * monthsPerYear + later.date().month() - earlier.date().month();
    if (earlier.addMonths(months) > later)
        --months;
    return months;
}

static QString amount(const QDateTime& earlier, const QDateTime& later) {
    const auto text = [](qint64 count, const QString& unit) { return QString::number(count) + u' ' + unit; };
    if (const int months = monthsBetween(earlier, later); months > 0)
        return months < monthsPerYear ? text(months, QStringLiteral("mo."))
                                      : text(months / monthsPerYear, QStringLiteral("yr."));
    const qint64 seconds = earlier.secsTo(later);
    if (seconds >= daysPerWeek * secondsPerDay)
        return text(seconds / (daysPerWeek * secondsPerDay), QStringLiteral("wk."));
    if (const qint64 days = seconds / secondsPerDay; days > 0)
        return text(days, days == 1 ? QStringLiteral("day") : QStringLiteral("days"));
    if (seconds >= secondsPerHour)
        return text(seconds / secondsPerHour, QStringLiteral("hr."));
    if (seconds >= secondsPerMinute)
        return text(seconds / secondsPerMinute, QStringLiteral("min."));
    return text(seconds, QStringLiteral("sec."));
}

QString RelativeDateTimeFormatter::localizedString(const QDateTime& date, const QDateTime& reference) {
    if (date > reference)
        return QStringLiteral("in ") + amount(reference, date);
    return amount(date, reference) + QStringLiteral(" ago");
}
