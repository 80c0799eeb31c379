#pragma once

#include <QColor>

#include <array>

class QPalette;

/// The program's own colours, sRGB and opaque.
namespace Palette {

inline constexpr QColor markerAmber{0xF2, 0xA9, 0x3B};
inline constexpr QColor brandBlue{0x00, 0xC2, 0xFF};
inline constexpr QColor brandBlueDeep{0x0B, 0x3E, 0x75};
inline constexpr QColor inkSlate{0x3A, 0x3A, 0x3C};
inline constexpr QColor paperCream{0xFB, 0xF7, 0xEE};

/// The colours of fields, editors and warnings on the page, for which desktops have none of their own.
inline constexpr QColor systemBlue{0x00, 0x7A, 0xFF};
inline constexpr QColor systemRed{0xFF, 0x3B, 0x30};

/// The swatches for annotations, in the order of the toolbar.
inline constexpr std::array<QColor, 6> annotationPresets{markerAmber,
                                                         QColor{0xE6, 0x48, 0x3C},
                                                         QColor{0x3C, 0x8C, 0xE6},
                                                         QColor{0x3C, 0xB5, 0x66},
                                                         QColor{0x9B, 0x59, 0xD0},
                                                         QColor{0x1C, 0x1C, 0x1E}};

/// Whether text of that palette is light on a dark ground.
[[nodiscard]] bool isDark(const QPalette& widgets);

/// What lies behind the pages: white with a trace of blue, or a dark grey with the same trace where the widgets'
/// palette is a dark one.
[[nodiscard]] QColor appTint(const QPalette& widgets);

} // namespace Palette
