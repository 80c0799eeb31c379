#include "MTRadical.h"

MTRadical::MTRadical() : MTMathAtom(MTMathAtomType::radical) {}

std::shared_ptr<MTMathAtom> MTRadical::clone() const {
    return cloneOf(*this);
}

void MTRadical::unshare(ListTransform transform) {
    MTMathAtom::unshare(transform);
    radicand = transform(radicand);
    degree = transform(degree);
}

QString MTRadical::description() const {
    QString text = QStringLiteral("\\sqrt");
    if (degree)
        text += u'[' + listDescription(degree) + u']';
    return text + u'{' + listDescription(radicand) + u'}' + scriptsDescription();
}
