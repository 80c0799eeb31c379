#pragma once

#include "MTMathAtom.h"

/// A root: what is under the sign and, for other than the square root, its degree. The nucleus stays empty.
class MTRadical : public MTMathAtom {
public:
    MTRadical();

    std::shared_ptr<MTMathList> radicand;
    /// Null for a square root.
    std::shared_ptr<MTMathList> degree;

    [[nodiscard]] QString description() const override;

protected:
    MTRadical(const MTRadical&) = default;
    [[nodiscard]] std::shared_ptr<MTMathAtom> clone() const override;
    void unshare(ListTransform transform) override;
};
