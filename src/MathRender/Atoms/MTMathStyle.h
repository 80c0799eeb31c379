#pragma once

#include "MTLineStyle.h"
#include "MTMathAtom.h"

/// Sets the style for the rest of its list.
class MTMathStyle : public MTMathAtom {
public:
    explicit MTMathStyle(MTLineStyle lineStyle = MTLineStyle::display);

    MTLineStyle style;

protected:
    MTMathStyle(const MTMathStyle&) = default;
    [[nodiscard]] std::shared_ptr<MTMathAtom> clone() const override;
};
