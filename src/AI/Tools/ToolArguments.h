#pragma once

#include <QJsonObject>
#include <QString>

#include <optional>

/// Reads the input of a tool call, which the model made up: it may hold anything.
namespace ToolArguments {

/// A number without its fraction, held within the range of the type. None for anything else, text that looks like a
/// number included.
[[nodiscard]] std::optional<qint64> integer(const QJsonObject& input, QLatin1String name);

/// None for anything but a string.
[[nodiscard]] std::optional<QString> string(const QJsonObject& input, QLatin1String name);

} // namespace ToolArguments
