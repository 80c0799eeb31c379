#pragma once

#include "MTInnerListAtom.h"

/// A list under an accent. The nucleus is the combining character.
class MTAccent : public MTInnerListAtom {
public:
    explicit MTAccent(QString value);

protected:
    MTAccent(const MTAccent&) = default;
    [[nodiscard]] std::shared_ptr<MTMathAtom> clone() const override;
};
