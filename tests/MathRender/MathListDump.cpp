#include "MathListDump.h"

#include "MTAccent.h"
#include "MTFraction.h"
#include "MTInner.h"
#include "MTLargeOperator.h"
#include "MTMathColor.h"
#include "MTMathList.h"
#include "MTMathListBuilder.h"
#include "MTMathSpace.h"
#include "MTMathStyle.h"
#include "MTMathTable.h"
#include "MTRadical.h"

#include <QStringList>

namespace {

QString shortName(MTMathAtomType type) {
    switch (type) {
    case MTMathAtomType::ordinary:
        return QStringLiteral("ord");
    case MTMathAtomType::number:
        return QStringLiteral("num");
    case MTMathAtomType::variable:
        return QStringLiteral("var");
    case MTMathAtomType::binaryOperator:
        return QStringLiteral("bin");
    case MTMathAtomType::unaryOperator:
        return QStringLiteral("un");
    case MTMathAtomType::relation:
        return QStringLiteral("rel");
    case MTMathAtomType::punctuation:
        return QStringLiteral("punct");
    default:
        return description(type).toLower();
    }
}

QString inParentheses(const std::shared_ptr<MTMathList>& list) {
    return u'(' + dump(list) + u')';
}

QString boundary(const std::shared_ptr<MTMathAtom>& atom) {
    return atom ? atom->nucleus : QStringLiteral("-");
}

QString table(const MTMathTable& atom) {
    QString text = QStringLiteral("table:") + atom.environment + u'[';
    for (const MTColumnAlignment alignment : atom.alignments)
        text += QStringLiteral("lcr")[static_cast<int>(alignment)];
    text += QStringLiteral(" %1 %2](").arg(atom.interColumnSpacing).arg(atom.interRowAdditionalSpacing);
    QStringList rows;
    for (const auto& row : atom.cells) {
        QStringList cells;
        for (const auto& cell : row)
            cells << dump(cell);
        rows << cells.join(u'&');
    }
    return text + rows.join(u'\\') + u')';
}

QString body(const MTMathAtom& atom) {
    if (const auto* fraction = dynamic_cast<const MTFraction*>(&atom)) {
        return (fraction->hasRule ? QStringLiteral("frac") : QStringLiteral("atop")) + u'[' + fraction->leftDelimiter +
               u' ' + fraction->rightDelimiter + u']' + inParentheses(fraction->numerator) +
               inParentheses(fraction->denominator);
    }
    if (const auto* radical = dynamic_cast<const MTRadical*>(&atom))
        return QStringLiteral("sqrt[") + dump(radical->degree) + u']' + inParentheses(radical->radicand);
    if (const auto* op = dynamic_cast<const MTLargeOperator*>(&atom))
        return (op->limits ? QStringLiteral("op+limits:") : QStringLiteral("op:")) + op->nucleus;
    if (const auto* inner = dynamic_cast<const MTInner*>(&atom)) {
        return QStringLiteral("inner[") + boundary(inner->leftBoundary()) + u' ' + boundary(inner->rightBoundary()) +
               u']' + inParentheses(inner->innerList);
    }
    if (const auto* colored = dynamic_cast<const MTColoredAtom*>(&atom))
        return colored->command() + QStringLiteral("{") + colored->colorString + u'}' +
               inParentheses(colored->innerList);
    if (const auto* accent = dynamic_cast<const MTAccent*>(&atom)) {
        return QStringLiteral("accent:U+%1").arg(accent->nucleus.front().unicode(), 4, 16, QLatin1Char('0')) +
               inParentheses(accent->innerList);
    }
    if (const auto* decorated = dynamic_cast<const MTInnerListAtom*>(&atom))
        return shortName(atom.type) + inParentheses(decorated->innerList);
    if (const auto* space = dynamic_cast<const MTMathSpace*>(&atom))
        return QStringLiteral("space:%1").arg(space->space);
    if (const auto* style = dynamic_cast<const MTMathStyle*>(&atom))
        return QStringLiteral("style:%1").arg(static_cast<int>(style->style));
    if (const auto* tableAtom = dynamic_cast<const MTMathTable*>(&atom))
        return table(*tableAtom);
    return shortName(atom.type) + u':' + atom.nucleus;
}

} // namespace

QString dump(const MTMathAtom& atom) {
    static const QStringList styles{QString(),
                                    QStringLiteral("@roman"),
                                    QStringLiteral("@bold"),
                                    QStringLiteral("@caligraphic"),
                                    QStringLiteral("@typewriter"),
                                    QStringLiteral("@italic"),
                                    QStringLiteral("@sansSerif"),
                                    QStringLiteral("@fraktur"),
                                    QStringLiteral("@blackboard"),
                                    QStringLiteral("@boldItalic")};
    QString text = body(atom) + styles[static_cast<int>(atom.fontStyle)];
    if (atom.superScript())
        text += u'^' + inParentheses(atom.superScript());
    if (atom.subScript())
        text += u'_' + inParentheses(atom.subScript());
    if (!atom.fusedAtoms.empty()) {
        text += u'<';
        for (const auto& fused : atom.fusedAtoms)
            text += fused->nucleus + u'|';
        text += u'>';
    }
    if (atom.indexRange != MTRange{})
        text += QStringLiteral("{%1+%2}").arg(atom.indexRange.location).arg(atom.indexRange.length);
    return text;
}

QString dump(const std::shared_ptr<MTMathList>& list) {
    if (!list)
        return QStringLiteral("-");
    QStringList atoms;
    for (const auto& atom : list->atoms())
        atoms << dump(*atom);
    return atoms.join(u' ');
}

QString dumpOfSource(QStringView source) {
    std::optional<MTParseError> error;
    const std::shared_ptr<MTMathList> list = MTMathListBuilder::build(source, error);
    if (error)
        return QStringLiteral("error %1: %2").arg(static_cast<int>(error->code)).arg(error->message);
    return dump(list);
}
