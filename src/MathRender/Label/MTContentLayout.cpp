#include "MTContentLayout.h"

#include "MTDisplay.h"

#include <algorithm>

QSizeF MTContentLayout::sizeOf(const MTDisplay& display) const {
    return {display.width() + insets.left() + insets.right(),
            display.ascent() + display.descent() + insets.top() + insets.bottom()};
}

QPointF MTContentLayout::positionOf(const MTDisplay& display, QSizeF bounds, double fontSize) const {
    double x = insets.left();
    switch (alignment) {
    case MTTextAlignment::left:
        break;
    case MTTextAlignment::center:
        x += (bounds.width() - insets.left() - insets.right() - display.width()) / 2;
        break;
    case MTTextAlignment::right:
        x = bounds.width() - display.width() - insets.right();
        break;
    }
    const double contentHeight = std::max(display.ascent() + display.descent(), fontSize / 2);
    const double available = bounds.height() - insets.bottom() - insets.top();
    return {x, (available - contentHeight) / 2 + display.descent() + insets.bottom()};
}
