#pragma once

#include <QString>

#include <cstddef>
#include <memory>

/// Which part of the atom a nested index goes on in.
enum class MTMathListSubIndexType : int {
    none,
    nucleus,
    superscript,
    ssubscript,
    numerator,
    denominator,
    radicand,
    degree
};

/// A place in the tree of a formula: an atom of a list and, inside it, a place in one of its parts. An immutable value.
class MTMathListIndex {
public:
    /// A place in the list itself.
    [[nodiscard]] static MTMathListIndex level0Index(int atomIndex) { return MTMathListIndex(atomIndex); }

    explicit MTMathListIndex(int atomIndex) : m_atomIndex(atomIndex) {}
    MTMathListIndex(int atomIndex, MTMathListSubIndexType subIndexType, const MTMathListIndex& subIndex)
        : m_atomIndex(atomIndex), m_subIndexType(subIndexType),
          m_subIndex(std::make_shared<const MTMathListIndex>(subIndex)) {}

    [[nodiscard]] int atomIndex() const { return m_atomIndex; }
    [[nodiscard]] MTMathListSubIndexType subIndexType() const { return m_subIndexType; }
    /// Null when the place is not inside the atom.
    [[nodiscard]] const std::shared_ptr<const MTMathListIndex>& subIndex() const { return m_subIndex; }

    /// "[2]", or "[2, 4:[0]]" with the sub-index type as a number.
    [[nodiscard]] QString description() const;

    /// Combines the atom's index and the sub-index type.
    [[nodiscard]] std::size_t hash() const;

    friend bool operator==(const MTMathListIndex& left, const MTMathListIndex& right);

private:
    int m_atomIndex;
    MTMathListSubIndexType m_subIndexType = MTMathListSubIndexType::none;
    std::shared_ptr<const MTMathListIndex> m_subIndex;
};

inline std::size_t qHash(const MTMathListIndex& index, std::size_t seed = 0) {
    return index.hash() ^ seed;
}
