#pragma once

#include <QString>

#include <memory>
#include <vector>

class MTMathAtom;

/// A formula, or a part of one, as an ordered list of atoms. Lists own their atoms, shared by reference. Atoms of type
/// `boundary` never stand in a list. Any thread may use a list, one at a time.
class MTMathList {
public:
    MTMathList() = default;
    /// Missing atoms are left out; throws MTException for a boundary.
    explicit MTMathList(const std::vector<std::shared_ptr<MTMathAtom>>& atoms);
    explicit MTMathList(std::shared_ptr<MTMathAtom> atom);
    /// A deep copy.
    MTMathList(const MTMathList& other);
    MTMathList& operator=(const MTMathList&) = delete;
    ~MTMathList();

    /// A deep copy, or null for no list.
    [[nodiscard]] static std::shared_ptr<MTMathList> copy(const std::shared_ptr<MTMathList>& list);

    [[nodiscard]] const std::vector<std::shared_ptr<MTMathAtom>>& atoms() const { return m_atoms; }
    [[nodiscard]] bool isEmpty() const { return m_atoms.empty(); }

    /// Appends. A null atom is ignored; throws MTException for a boundary.
    void add(std::shared_ptr<MTMathAtom> atom);

    /// Inserts before the atom at `index`, or at the end when that is the count. Behind the count nothing is done. A
    /// null atom is ignored; throws MTException for a boundary and for a negative index.
    void insert(std::shared_ptr<MTMathAtom> atom, int index);

    /// Appends the atoms of `list` themselves, not copies. Null is ignored.
    void append(const std::shared_ptr<MTMathList>& list);

    /// Does nothing on an empty list.
    void removeLastAtom();

    /// Both throw MTException when an index is outside the list; `last` is removed as well.
    void removeAtom(int index);
    void removeAtoms(int first, int last);

    /// What the layout consumes: a deep copy with operators resolved into binary and unary ones, runs of digits fused
    /// into numbers, and every atom's place set.
    [[nodiscard]] std::shared_ptr<MTMathList> finalized() const;

    /// The list as LaTeX source. Defined in Parser/MTMathListWriter.cpp: the model itself knows no commands.
    [[nodiscard]] QString string() const;

    /// A debugging text of the atoms.
    [[nodiscard]] QString description() const;

private:
    void checkIndex(int index) const;

    std::vector<std::shared_ptr<MTMathAtom>> m_atoms;
};
