#include "MTInner.h"

#include "MTException.h"

namespace {

/// Puts `boundary` into `field`, or leaves it empty and throws `reason` when it is another kind of atom.
void setBoundary(std::shared_ptr<MTMathAtom>& field, std::shared_ptr<MTMathAtom> boundary, const QString& reason) {
    field = std::move(boundary);
    if (field && field->type != MTMathAtomType::boundary) {
        field.reset();
        throw MTException(reason);
    }
}

} // namespace

MTInner::MTInner() : MTInnerListAtom(MTMathAtomType::inner) {}

void MTInner::setLeftBoundary(std::shared_ptr<MTMathAtom> boundary) {
    setBoundary(m_leftBoundary, std::move(boundary), QStringLiteral("Left boundary must be of type .boundary"));
}

void MTInner::setRightBoundary(std::shared_ptr<MTMathAtom> boundary) {
    setBoundary(m_rightBoundary, std::move(boundary), QStringLiteral("Right boundary must be of type .boundary"));
}

std::shared_ptr<MTMathAtom> MTInner::clone() const {
    return cloneOf(*this);
}

void MTInner::unshare(ListTransform transform) {
    MTInnerListAtom::unshare(transform);
    if (m_leftBoundary)
        m_leftBoundary = m_leftBoundary->copy();
    if (m_rightBoundary)
        m_rightBoundary = m_rightBoundary->copy();
}

QString MTInner::description() const {
    QString text = QStringLiteral("\\inner");
    if (m_leftBoundary)
        text += u'[' + m_leftBoundary->nucleus + u']';
    text += u'{' + listDescription(innerList) + u'}';
    if (m_rightBoundary)
        text += u'[' + m_rightBoundary->nucleus + u']';
    return text + scriptsDescription();
}
