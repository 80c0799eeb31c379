#include "MTMathColor.h"

#include <QStringBuilder>

QString MTColoredAtom::description() const {
    return u'\\' % command() % u'{' % colorString % QLatin1String("}{") % listDescription(innerList) % u'}';
}

MTMathColor::MTMathColor() : MTColoredAtom(MTMathAtomType::color) {}

std::shared_ptr<MTMathAtom> MTMathColor::clone() const {
    return cloneOf(*this);
}

MTMathTextColor::MTMathTextColor() : MTColoredAtom(MTMathAtomType::textcolor) {}

std::shared_ptr<MTMathAtom> MTMathTextColor::clone() const {
    return cloneOf(*this);
}

MTMathColorbox::MTMathColorbox() : MTColoredAtom(MTMathAtomType::colorBox) {}

std::shared_ptr<MTMathAtom> MTMathColorbox::clone() const {
    return cloneOf(*this);
}
