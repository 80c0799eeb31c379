#include "ToolArguments.h"

#include <cmath>
#include <limits>

std::optional<qint64> ToolArguments::integer(const QJsonObject& input, QLatin1String name) {
    const QJsonValue value = input.value(name);
    if (!value.isDouble() || std::isnan(value.toDouble()))
        return std::nullopt;
    using Limits = std::numeric_limits<qint64>;
    constexpr double beyond = 9223372036854775808.0; // 2 to the power of 63
    const double number = std::trunc(value.toDouble());
    if (number >= beyond)
        return Limits::max();
    if (number < -beyond)
        return Limits::min();
    // Whole numbers are kept exactly where the parser found some.
    return value.toInteger(static_cast<qint64>(number));
}

std::optional<QString> ToolArguments::string(const QJsonObject& input, QLatin1String name) {
    const QJsonValue value = input.value(name);
    return value.isString() ? std::optional(value.toString()) : std::nullopt;
}
