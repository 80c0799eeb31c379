#include "Palette.h"

#include <QPalette>

static constexpr QColor darkBackground{0x1E, 0x1E, 0x1E};
static constexpr float tintFraction = 0.025F;

static QColor blended(const QColor& color, float fraction, const QColor& other) {
    const auto mix = [fraction](float from, float to) { return from + (to - from) * fraction; };
    return QColor::fromRgbF(mix(color.redF(), other.redF()), mix(color.greenF(), other.greenF()),
                            mix(color.blueF(), other.blueF()));
}

bool Palette::isDark(const QPalette& widgets) {
    return widgets.color(QPalette::Window).lightnessF() < widgets.color(QPalette::WindowText).lightnessF();
}

QColor Palette::appTint(const QPalette& widgets) {
    return blended(isDark(widgets) ? darkBackground : QColor{0xFF, 0xFF, 0xFF}, tintFraction, systemBlue);
}
