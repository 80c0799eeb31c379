#pragma once

#include "MTInnerListAtom.h"

/// A list between two delimiters that grow with it.
class MTInner : public MTInnerListAtom {
public:
    MTInner();

    /// Atoms of type `boundary`, or null. An empty nucleus stands for a delimiter that is not drawn.
    [[nodiscard]] const std::shared_ptr<MTMathAtom>& leftBoundary() const { return m_leftBoundary; }
    [[nodiscard]] const std::shared_ptr<MTMathAtom>& rightBoundary() const { return m_rightBoundary; }
    /// Null removes the boundary. Throws MTException, with the boundary removed, for an atom of another type.
    void setLeftBoundary(std::shared_ptr<MTMathAtom> boundary);
    void setRightBoundary(std::shared_ptr<MTMathAtom> boundary);

    [[nodiscard]] QString description() const override;

protected:
    MTInner(const MTInner&) = default;
    [[nodiscard]] std::shared_ptr<MTMathAtom> clone() const override;
    void unshare(ListTransform transform) override;

private:
    std::shared_ptr<MTMathAtom> m_leftBoundary;
    std::shared_ptr<MTMathAtom> m_rightBoundary;
};
