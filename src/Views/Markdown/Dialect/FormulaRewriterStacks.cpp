// What stands above and below.

#include "DialectSymbols.h"
#include "FormulaRewriter.h"

#include <algorithm>

using Type = MTMathAtomType;

QString FormulaRewriter::stack(const QString& base, const QStringList& above, const QStringList& below,
                               MTLineStyle style) {
    static constexpr QStringView names[] = {u"\\displaystyle ", u"\\textstyle ", u"\\scriptstyle ",
                                            u"\\scriptscriptstyle "};
    const auto row = [](MTLineStyle rowStyle, const QString& latex) {
        return latex.isEmpty() ? QString() : QString(names[static_cast<std::size_t>(rowStyle)].toString() + latex);
    };
    // As many rows above as below, so that the middle of the table, which the engine puts on the axis, is that of the
    // base. Where nothing is above, a fraction of nothing is as high as what would be there.
    const MTLineStyle small = scriptStyle(style);
    const qsizetype count = std::max(above.size(), below.size());
    QStringList rows;
    for (qsizetype i = count; i > 0; --i)
        rows += row(small, i <= above.size() ? above[above.size() - i] : QString());
    if (above.isEmpty() && count > 0)
        rows.front() = row(small, QStringLiteral("\\frac{}{}"));
    rows += row(style, base);
    for (qsizetype i = 0; i < count; ++i)
        rows += row(small, below.value(i));
    return inStyle(small, QLatin1String("\\begin{matrix}") + rows.join(QLatin1String("\\\\")) +
                              QLatin1String("\\end{matrix}"));
}

std::optional<QString> FormulaRewriter::stackOnSign(char32_t sign, const QString& above, const QString& below,
                                                    MTLineStyle style) {
    std::optional<QString> latex = DialectSymbols::withLimits(sign);
    if (!latex)
        return std::nullopt;
    if (!above.isEmpty())
        *latex += u'^' + braced(above);
    if (!below.isEmpty())
        *latex += u'_' + braced(below);
    // Above and below in display style only; in scripts, they stand beside.
    return style == MTLineStyle::text ? inStyle(MTLineStyle::display, *latex) : kept(*latex);
}

std::optional<FormulaToken> FormulaRewriter::loneSign() {
    const std::size_t start = m_tokens.position();
    m_tokens.skipBlanks();
    const bool isBraced = m_tokens.peek().kind == Kind::open;
    if (isBraced) {
        m_tokens.next();
        m_tokens.skipBlanks();
    }
    const FormulaToken sign = m_tokens.next();
    m_tokens.skipBlanks();
    const bool isLone = !isBraced || m_tokens.peek().kind == Kind::close;
    m_tokens.moveTo(start);
    const bool isSign = (sign.kind == Kind::command && !DialectCommands::named(sign.text)) ||
                        (sign.kind == Kind::character && sign.marks().isEmpty());
    return isLone && isSign ? std::optional(sign) : std::nullopt;
}

FormulaPiece FormulaRewriter::readSet(bool isAbove, MTLineStyle style) {
    const QString script = argument(scriptStyle(style));
    const QString above = isAbove ? script : QString();
    const QString below = isAbove ? QString() : script;
    std::optional<FormulaPiece> piece;
    std::optional<char32_t> character;
    if (const std::optional<FormulaToken> sign = loneSign()) {
        const bool isCommand = sign->kind == Kind::command;
        piece = isCommand ? DialectSymbols::forCommand(sign->text) : pieceOf(*sign);
        character = isCommand        ? DialectSymbols::characterOf(sign->text)
                    : sign->is(U'-') ? U'\u2212'
                                     : sign->character();
    }
    const List base = argumentList(style);
    if (piece && piece->meant == Type::largeOperator)
        return {piece->latex + QLatin1String("\\limits") + (isAbove ? u'^' : u'_') + braced(script),
                Type::largeOperator};
    const MTMathAtomType meant = piece                                  ? piece->meant
                                 : base.writer.left() == Type::relation ? Type::relation
                                                                        : Type::ordinary;
    if (character && (meant == Type::relation || meant == Type::binaryOperator)) {
        if (const std::optional<QString> latex = stackOnSign(*character, above, below, style))
            return keptPiece(*latex, meant);
    }
    return keptPiece(stack(base.latex(), rowsOf(above), rowsOf(below), style), meant);
}

FormulaPiece FormulaRewriter::readOver(const Row& row, MTLineStyle style) {
    const QString above = QString::fromUtf16(row.data.data(), static_cast<qsizetype>(row.data.size()));
    return keptPiece(stack(argument(style), {above}, {}, style), Type::ordinary);
}

FormulaPiece FormulaRewriter::readLineWithLabel(bool isAbove, MTLineStyle style) {
    const QString base =
        (isAbove ? QLatin1String("\\overline") : QLatin1String("\\underline")) + braced(argument(style));
    const Scripts scripts = readScripts(style);
    if (!scripts.hasSub && !scripts.hasSuper)
        return {base, Type::ordinary};
    // With a brace between, as an operator in the middle of its row: a line alone would make a fraction of both.
    const auto brace = [](char32_t sign) {
        return QString(QLatin1String("\\displaystyle ") + DialectSymbols::withLimits(sign).value_or(QString()));
    };
    const QStringList above = scripts.hasSuper ? QStringList{scripts.super, brace(U'\u23DE')} : QStringList();
    const QStringList below = scripts.hasSub ? QStringList{brace(U'\u23DF'), scripts.sub} : QStringList();
    return keptPiece(stack(base, above, below, style), Type::ordinary);
}

FormulaPiece FormulaRewriter::readArrow(const Row& row, MTLineStyle style) {
    const std::optional<QString> below = option(scriptStyle(style));
    const QString above = argument(scriptStyle(style));
    const auto latex = stackOnSign(row.data.front(), above, below.value_or(QString()), style);
    if (!latex)
        fail();
    return keptPiece(latex.value_or(QString()), Type::relation);
}
