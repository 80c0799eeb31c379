#pragma once

#include <QString>

class QDateTime;

/// Writes how long ago something was, in the short form of English: "5 min. ago".
namespace RelativeDateTimeFormatter {

/// In the largest unit of which at least one has passed between `date` and `reference`: seconds, minutes, hours, days,
/// weeks, months or years of the calendar. A date after the reference reads "in 5 min.".
[[nodiscard]] QString localizedString(const QDateTime& date, const QDateTime& reference);

} // namespace RelativeDateTimeFormatter
