#include "MTMathList.h"

#include "MTException.h"
#include "MTMathAtom.h"

namespace {

void refuseBoundary(const MTMathAtom& atom) {
    if (atom.type == MTMathAtomType::boundary) {
        throw MTException(QStringLiteral("Cannot add atom of type %1 into mathlist").arg(static_cast<int>(atom.type)));
    }
}

/// Whether a binary operator behind an atom of `type` has nothing to join on its left (TeXbook p. 442, rule 5).
bool leavesNoLeftOperand(MTMathAtomType type) {
    return type == MTMathAtomType::binaryOperator || type == MTMathAtomType::relation || type == MTMathAtomType::open ||
           type == MTMathAtomType::punctuation || type == MTMathAtomType::largeOperator;
}

/// Whether an atom of `type` takes the right operand from a binary operator in front of it (rule 6).
bool leavesNoRightOperand(MTMathAtomType type) {
    return type == MTMathAtomType::relation || type == MTMathAtomType::punctuation || type == MTMathAtomType::close;
}

} // namespace

MTMathList::MTMathList(const std::vector<std::shared_ptr<MTMathAtom>>& atoms) {
    m_atoms.reserve(atoms.size());
    for (const std::shared_ptr<MTMathAtom>& atom : atoms)
        add(atom);
}

MTMathList::MTMathList(std::shared_ptr<MTMathAtom> atom) {
    add(std::move(atom));
}

MTMathList::MTMathList(const MTMathList& other) {
    m_atoms.reserve(other.m_atoms.size());
    for (const std::shared_ptr<MTMathAtom>& atom : other.m_atoms)
        m_atoms.push_back(atom->copy());
}

MTMathList::~MTMathList() = default;

std::shared_ptr<MTMathList> MTMathList::copy(const std::shared_ptr<MTMathList>& list) {
    return list ? std::make_shared<MTMathList>(*list) : nullptr;
}

void MTMathList::add(std::shared_ptr<MTMathAtom> atom) {
    if (!atom)
        return;
    refuseBoundary(*atom);
    m_atoms.push_back(std::move(atom));
}

void MTMathList::insert(std::shared_ptr<MTMathAtom> atom, int index) {
    if (!atom)
        return;
    refuseBoundary(*atom);
    if (index == static_cast<int>(m_atoms.size())) {
        m_atoms.push_back(std::move(atom));
    } else if (index < static_cast<int>(m_atoms.size())) {
        checkIndex(index);
        m_atoms.insert(m_atoms.begin() + index, std::move(atom));
    }
}

void MTMathList::append(const std::shared_ptr<MTMathList>& list) {
    if (!list)
        return;
    const std::size_t count = list->m_atoms.size();
    for (std::size_t i = 0; i < count; ++i)
        m_atoms.push_back(list->m_atoms[i]);
}

void MTMathList::removeLastAtom() {
    if (!m_atoms.empty())
        m_atoms.pop_back();
}

void MTMathList::removeAtom(int index) {
    removeAtoms(index, index);
}

void MTMathList::removeAtoms(int first, int last) {
    checkIndex(first);
    checkIndex(last);
    if (last < first)
        throw MTException(QStringLiteral("Index %1 out of bounds").arg(last));
    m_atoms.erase(m_atoms.begin() + first, m_atoms.begin() + last + 1);
}

void MTMathList::checkIndex(int index) const {
    if (index < 0 || index >= static_cast<int>(m_atoms.size()))
        throw MTException(QStringLiteral("Index %1 out of bounds").arg(index));
}

std::shared_ptr<MTMathList> MTMathList::finalized() const {
    auto result = std::make_shared<MTMathList>();
    result->m_atoms.reserve(m_atoms.size());
    MTMathAtom* prev = nullptr;
    for (const std::shared_ptr<MTMathAtom>& atom : m_atoms) {
        std::shared_ptr<MTMathAtom> next = atom->finalized();
        if (atom->indexRange == MTRange{})
            next->indexRange = {prev ? prev->indexRange.end() : 0, 1};

        if (next->type == MTMathAtomType::binaryOperator) {
            if (!prev || leavesNoLeftOperand(prev->type))
                next->type = MTMathAtomType::unaryOperator;
        } else if (leavesNoRightOperand(next->type)) {
            if (prev && prev->type == MTMathAtomType::binaryOperator)
                prev->type = MTMathAtomType::unaryOperator;
        } else if (next->type == MTMathAtomType::number && prev && prev->type == MTMathAtomType::number &&
                   !prev->subScript() && !prev->superScript()) {
            prev->fuse(next);
            continue;
        }
        prev = next.get();
        result->m_atoms.push_back(std::move(next));
    }
    if (prev && prev->type == MTMathAtomType::binaryOperator)
        prev->type = MTMathAtomType::unaryOperator;
    return result;
}

QString MTMathList::description() const {
    QString text;
    for (const std::shared_ptr<MTMathAtom>& atom : m_atoms)
        text += atom->description();
    return text;
}
