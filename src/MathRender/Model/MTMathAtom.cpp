#include "MTMathAtom.h"

#include "MTException.h"
#include "MTMathList.h"

#include <cstdio>

namespace {

std::shared_ptr<MTMathList> copyOf(const std::shared_ptr<MTMathList>& list) {
    return MTMathList::copy(list);
}

std::shared_ptr<MTMathList> finalizedOf(const std::shared_ptr<MTMathList>& list) {
    return list ? list->finalized() : nullptr;
}

} // namespace

MTMathAtom::MTMathAtom(MTMathAtomType atomType, QString value) : type(atomType), nucleus(std::move(value)) {
    if (type == MTMathAtomType::radical)
        nucleus.clear();
}

MTMathAtom::MTMathAtom(const MTMathAtom& other) = default;
MTMathAtom::~MTMathAtom() = default;

void MTMathAtom::setSubScript(std::shared_ptr<MTMathList> list) {
    m_subScript = std::move(list);
    if (m_subScript && !scriptsAllowed()) {
        m_subScript.reset();
        throw MTException(QLatin1String("Subscripts not allowed for atom of type ") + ::description(type));
    }
}

void MTMathAtom::setSuperScript(std::shared_ptr<MTMathList> list) {
    m_superScript = std::move(list);
    if (m_superScript && !scriptsAllowed()) {
        m_superScript.reset();
        throw MTException(QLatin1String("Superscripts not allowed for atom of type ") + ::description(type));
    }
}

std::shared_ptr<MTMathAtom> MTMathAtom::clone() const {
    return cloneOf(*this);
}

std::shared_ptr<MTMathAtom> MTMathAtom::copy() const {
    std::shared_ptr<MTMathAtom> atom = clone();
    atom->unshare(&copyOf);
    return atom;
}

std::shared_ptr<MTMathAtom> MTMathAtom::finalized() const {
    std::shared_ptr<MTMathAtom> atom = clone();
    atom->unshare(&finalizedOf);
    return atom;
}

void MTMathAtom::unshare(ListTransform transform) {
    const std::shared_ptr<MTMathList> originalSubScript = m_subScript;
    const std::shared_ptr<MTMathList> originalSuperScript = m_superScript;
    setSubScript(transform(m_subScript));
    setSuperScript(transform(m_superScript));
    // The last fused atom shares its scripts with this one. Copies keep it so: taking such a script apart twice at
    // every level of nesting would double the work with each.
    for (std::shared_ptr<MTMathAtom>& fused : fusedAtoms) {
        fused = fused->clone();
        const bool sameSubScript = fused->m_subScript && fused->m_subScript == originalSubScript;
        const bool sameSuperScript = fused->m_superScript && fused->m_superScript == originalSuperScript;
        if (sameSubScript)
            fused->m_subScript.reset();
        if (sameSuperScript)
            fused->m_superScript.reset();
        fused->unshare(transform);
        if (sameSubScript)
            fused->m_subScript = m_subScript;
        if (sameSuperScript)
            fused->m_superScript = m_superScript;
    }
}

void MTMathAtom::fuse(const std::shared_ptr<MTMathAtom>& atom) {
    if (m_subScript || m_superScript || atom->type != type) {
        std::puts("Can't fuse these 2 atoms");
        return;
    }
    if (fusedAtoms.empty())
        fusedAtoms.push_back(copy());
    if (atom->fusedAtoms.empty())
        fusedAtoms.push_back(atom);
    else
        fusedAtoms.insert(fusedAtoms.end(), atom->fusedAtoms.begin(), atom->fusedAtoms.end());
    nucleus += atom->nucleus;
    indexRange.length += atom->indexRange.length;
    setSubScript(atom->m_subScript);
    setSuperScript(atom->m_superScript);
}

QString MTMathAtom::description() const {
    return nucleus + scriptsDescription();
}

QString MTMathAtom::scriptsDescription() const {
    QString text;
    if (m_superScript)
        text += QLatin1String("^{") + m_superScript->description() + u'}';
    if (m_subScript)
        text += QLatin1String("_{") + m_subScript->description() + u'}';
    return text;
}

QString MTMathAtom::listDescription(const std::shared_ptr<MTMathList>& list) {
    return list ? list->description() : QStringLiteral("placeholder");
}
