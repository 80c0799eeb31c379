#include "MTColor.h"

#include <cstdint>

namespace {

/// None for a character that is no hexadecimal digit.
std::optional<std::uint32_t> digitValue(QChar character) {
    const char16_t unit = character.unicode();
    if (unit >= u'0' && unit <= u'9')
        return unit - u'0';
    if (unit >= u'a' && unit <= u'f')
        return unit - u'a' + 10U;
    if (unit >= u'A' && unit <= u'F')
        return unit - u'A' + 10U;
    return std::nullopt;
}

} // namespace

std::optional<QColor> MTColor::fromHexString(QStringView text) {
    if (!text.startsWith(u'#'))
        return std::nullopt;
    std::uint32_t number = 0; // what runs over at the top is not asked for
    for (const QChar character : text.sliced(1)) {
        const auto digit = digitValue(character);
        if (!digit)
            break;
        number = (number << 4U) | *digit;
    }
    return QColor::fromRgb(static_cast<int>((number >> 16U) & 0xFFU), static_cast<int>((number >> 8U) & 0xFFU),
                           static_cast<int>(number & 0xFFU));
}
