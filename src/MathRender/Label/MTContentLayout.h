#pragma once

#include "MTLineStyle.h"

#include <QMarginsF>
#include <QPointF>
#include <QSizeF>

#include <cstdint>

class MTDisplay;

/// Whether a formula is set on its own or for a line of text.
enum class MTMathUILabelMode : std::uint8_t { display, text };

enum class MTTextAlignment : std::uint8_t { left, center, right };

/// How a formula is put into a rectangle, in points.
struct MTContentLayout {
    MTMathUILabelMode mode = MTMathUILabelMode::display;
    MTTextAlignment alignment = MTTextAlignment::left;
    QMarginsF insets;

    [[nodiscard]] MTLineStyle style() const {
        return mode == MTMathUILabelMode::display ? MTLineStyle::display : MTLineStyle::text;
    }

    /// What `display` takes with the insets around it.
    [[nodiscard]] QSizeF sizeOf(const MTDisplay& display) const;

    /// Where `display` goes in `bounds`, from the lower left corner, y up: by the alignment, and in the middle of the
    /// height. A formula lower than half of `fontSize` is placed as if it were as high as that.
    [[nodiscard]] QPointF positionOf(const MTDisplay& display, QSizeF bounds, double fontSize) const;
};
