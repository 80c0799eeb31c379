#include "MTFraction.h"

MTFraction::MTFraction(bool rule) : MTMathAtom(MTMathAtomType::fraction), hasRule(rule) {}

std::shared_ptr<MTMathAtom> MTFraction::clone() const {
    return cloneOf(*this);
}

void MTFraction::unshare(ListTransform transform) {
    MTMathAtom::unshare(transform);
    numerator = transform(numerator);
    denominator = transform(denominator);
}

QString MTFraction::description() const {
    QString text = hasRule ? QStringLiteral("\\frac") : QStringLiteral("\\atop");
    for (const QString& delimiter : {leftDelimiter, rightDelimiter}) {
        if (!delimiter.isEmpty())
            text += u'[' + delimiter + u']';
    }
    text += u'{' + listDescription(numerator) + QLatin1String("}{") + listDescription(denominator) + u'}';
    return text + scriptsDescription();
}
