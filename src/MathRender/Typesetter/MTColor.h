#pragma once

#include <QColor>
#include <QStringView>

#include <optional>

/// Colours as formulas write them.
namespace MTColor {

/// The colour of "#ff8000". None for a text that doesn't begin with "#", such as the name of a colour. Otherwise it is
/// lax: the hexadecimal digits up to the first other character are one number, however many there are, and its lowest
/// 24 bits are the colour. "#" alone is black.
[[nodiscard]] std::optional<QColor> fromHexString(QStringView text);

} // namespace MTColor
