#include "MTMathAtomType.h"

#include <QLatin1String>

QString description(MTMathAtomType type) {
    switch (type) {
    case MTMathAtomType::ordinary:
        return QStringLiteral("Ordinary");
    case MTMathAtomType::number:
        return QStringLiteral("Number");
    case MTMathAtomType::variable:
        return QStringLiteral("Variable");
    case MTMathAtomType::largeOperator:
        return QStringLiteral("Large Operator");
    case MTMathAtomType::binaryOperator:
        return QStringLiteral("Binary Operator");
    case MTMathAtomType::unaryOperator:
        return QStringLiteral("Unary Operator");
    case MTMathAtomType::relation:
        return QStringLiteral("Relation");
    case MTMathAtomType::open:
        return QStringLiteral("Open");
    case MTMathAtomType::close:
        return QStringLiteral("Close");
    case MTMathAtomType::fraction:
        return QStringLiteral("Fraction");
    case MTMathAtomType::radical:
        return QStringLiteral("Radical");
    case MTMathAtomType::punctuation:
        return QStringLiteral("Punctuation");
    case MTMathAtomType::placeholder:
        return QStringLiteral("Placeholder");
    case MTMathAtomType::inner:
        return QStringLiteral("Inner");
    case MTMathAtomType::underline:
        return QStringLiteral("Underline");
    case MTMathAtomType::overline:
        return QStringLiteral("Overline");
    case MTMathAtomType::accent:
        return QStringLiteral("Accent");
    case MTMathAtomType::boundary:
        return QStringLiteral("Boundary");
    case MTMathAtomType::space:
        return QStringLiteral("Space");
    case MTMathAtomType::style:
        return QStringLiteral("Style");
    case MTMathAtomType::color:
        return QStringLiteral("Color");
    case MTMathAtomType::textcolor:
        return QStringLiteral("TextColor");
    case MTMathAtomType::colorBox:
        return QStringLiteral("Colorbox");
    case MTMathAtomType::table:
        return QStringLiteral("Table");
    }
    return {};
}
