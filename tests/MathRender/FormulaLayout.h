#pragma once

#include "MTLineStyle.h"
#include "MTMathListDisplay.h"

#include <QPointF>
#include <QStringView>

#include <gtest/gtest.h>

#include <memory>

class MTFont;

/// Formulas laid out for tests, in Latin Modern Math. At 100 points a thousandth of the em is a tenth of a point.
namespace FormulaLayout {

[[nodiscard]] std::shared_ptr<const MTFont> font(double size = 100);

/// The test fails for a source that is no formula; the layout is that of an empty list then.
[[nodiscard]] std::unique_ptr<MTMathListDisplay> layout(QStringView source, MTLineStyle style = MTLineStyle::display,
                                                        const std::shared_ptr<const MTFont>& ofFont = font());

/// The box as the class that it must be of.
template <typename Display>
const Display& as(const MTDisplay& display) {
    const auto* const result = dynamic_cast<const Display*>(&display);
    EXPECT_TRUE(result) << "a box of another class";
    return result ? *result : throw std::bad_cast();
}

/// The box at `index` of a list.
template <typename Display = MTDisplay>
const Display& at(const MTMathListDisplay& list, std::size_t index) {
    return as<Display>(*list.subDisplays().at(index));
}

/// Fails where a box is not at a place, or is of another size, by more than rounding.
void expectPosition(const MTDisplay& display, QPointF position);
void expectExtent(const MTDisplay& display, double ascent, double descent, double width);

} // namespace FormulaLayout
