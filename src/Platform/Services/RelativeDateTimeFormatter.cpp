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
        return months < monthsPerYear ? text(months, u"mo."_qs) : text(months / monthsPerYear, u"yr."_qs);
    const qint64 seconds = earlier.secsTo(later);
    if (seconds >= daysPerWeek * secondsPerDay)
        return text(seconds / (daysPerWeek * secondsPerDay), u"wk."_qs);
    if (const qint64 days = seconds / secondsPerDay; days > 0)
        return text(days, days == 1 ? u"day"_qs : u"days"_qs);
    if (seconds >= secondsPerHour)
        return text(seconds / secondsPerHour, u"hr."_qs);
    if (seconds >= secondsPerMinute)
        return text(seconds / secondsPerMinute, u"min."_qs);
    return text(seconds, u"sec."_qs);
}

QString RelativeDateTimeFormatter::localizedString(const QDateTime& date, const QDateTime& reference) {
    if (date > reference)
        return u"in "_qs + amount(reference, date);
    return amount(date, reference) + u" ago"_qs;
}
