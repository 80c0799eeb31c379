// The rewriter's way through a list; commands, tables and words are in the other files.

#include "FormulaRewriter.h"

#include "DialectAccents.h"
#include "DialectSymbols.h"

#include <QScopedValueRollback>

/// Deeper than any formula that a person could read, and less than the engine can nest.
static constexpr int deepestNesting = 60;

/// "½" and its like as fractions; empty for any other character.
static QString fractionOf(char32_t character) {
    if (QChar::category(character) != QChar::Number_Other)
        return {};
    const QString parts = QString::fromUcs4(&character, 1).normalized(QString::NormalizationForm_KC);
    const qsizetype slash = parts.indexOf(u'\u2044');
    return slash > 0 ? QStringLiteral("\\frac{%1}{%2}").arg(parts.left(slash), parts.sliced(slash + 1)) : QString();
}

std::optional<QString> FormulaRewriter::rewritten() {
    const List list = readContents(MTLineStyle::display);
    if (m_hasFailed || m_tokens.peek().kind != Kind::end)
        return std::nullopt;
    return list.latex();
}

void FormulaRewriter::fail() {
    m_hasFailed = true;
    m_tokens.moveToEnd();
}

MTLineStyle FormulaRewriter::scriptStyle(MTLineStyle style) {
    return style <= MTLineStyle::text ? MTLineStyle::script : MTLineStyle::scriptOfScript;
}

MTLineStyle FormulaRewriter::fractionStyle(MTLineStyle style) {
    return style == MTLineStyle::display ? MTLineStyle::text : scriptStyle(style);
}

QString FormulaRewriter::inStyle(MTLineStyle style, const QString& latex) {
    static constexpr QStringView names[] = {u"\\displaystyle ", u"\\textstyle ", u"\\scriptstyle ",
                                            u"\\scriptscriptstyle "};
    return kept(names[static_cast<std::size_t>(style)].toString() + latex);
}

FormulaPiece FormulaRewriter::keptPiece(const QString& latex, MTMathAtomType meant) {
    return {latex, meant, MTMathAtomType::color, MTMathAtomType::ordinary};
}

bool FormulaRewriter::isAtListEnd() const {
    const FormulaToken& token = m_tokens.peek();
    switch (token.kind) {
    case Kind::close:
    case Kind::cell:
    case Kind::end:
        return true;
    case Kind::command:
        for (const QStringView name : {u"\\", u"cr", u"end", u"right", u"middle", u"newline", u"tabularnewline"}) {
            if (token.text == name)
                return true;
        }
        return false;
    default:
        return false;
    }
}

void FormulaRewriter::readList(List& list) {
    const QScopedValueRollback depth(m_depth, m_depth + 1);
    if (m_depth > deepestNesting)
        fail();
    for (m_tokens.skipBlanks(); !isAtListEnd(); m_tokens.skipBlanks())
        readAtom(list, true);
}

void FormulaRewriter::readAtom(List& list, bool scripts) {
    switch (m_tokens.peek().kind) {
    case Kind::open:
        readGroup(list, scripts);
        break;
    case Kind::command:
        readCommand(list, scripts);
        break;
    case Kind::character:
        readCharacter(list, scripts);
        break;
    case Kind::superscript:
    case Kind::subscript:
        if (scripts)
            addScripted({QStringLiteral("{}"), MTMathAtomType::ordinary}, list, true);
        else
            fail();
        break;
    default:
        fail();
        break;
    }
}

void FormulaRewriter::readGroup(List& list, bool scripts) {
    m_tokens.next();
    if (const FormulaToken& sign = m_tokens.peek();
        sign.kind == Kind::character && m_tokens.peekBehind().kind == Kind::close && sign.marks().isEmpty()) {
        // "{,}" and "{=}" are spaced as letters are.
        const std::optional<FormulaPiece> piece = pieceOf(sign);
        if (piece && piece->meant != MTMathAtomType::ordinary && piece->latex.size() == 1) {
            const char32_t shown = sign.is(U'-') ? U'\u2212' : sign.is(U'*') ? U'\u2217' : sign.character();
            m_tokens.next();
            m_tokens.skipBlanks();
            m_tokens.next();
            const std::optional<QString> latex = DialectSymbols::ordinary(shown);
            if (!latex)
                return fail();
            return addScripted({*latex, MTMathAtomType::ordinary}, list, scripts);
        }
    }
    const List group = readBraced(list.style);
    const QString latex = group.latex();
    if (group.setsStyle)
        addScripted(keptPiece(kept(latex), MTMathAtomType::ordinary), list, scripts);
    else if (latex.isEmpty() && !isAtScript())
        list.writer.addUnspaced(u"{}");
    else
        addScripted({braced(latex), MTMathAtomType::ordinary, group.writer.left(), group.writer.right()}, list,
                    scripts);
}

std::optional<FormulaPiece> FormulaRewriter::pieceOf(const FormulaToken& token) {
    using enum MTMathAtomType;
    const char32_t character = token.character();
    const auto as = [&](MTMathAtomType type) { return FormulaPiece(token.text.left(1).toString(), type); };
    switch (character) {
    case U'(':
    case U'[':
        return as(open);
    case U')':
    case U']':
    case U'!':
    case U'?':
        return as(close);
    case U',':
    case U';':
        return as(punctuation);
    case U'=':
    case U'<':
    case U'>':
    case U':':
        return as(relation);
    case U'-':
    case U'+':
        return as(binaryOperator);
    case U'*':
        return FormulaPiece(QStringLiteral("\\ast "), binaryOperator);
    case U'$':
    case U'%':
    case U'#':
        return FormulaPiece(u'\\' + token.text.left(1).toString(), ordinary);
    case U'\u2212':
    case U'\u2010':
    case U'\u2011':
    case U'\u2013':
        return FormulaPiece(QStringLiteral("-"), binaryOperator);
    default:
        break;
    }
    if (character < 0x80)
        return as(ordinary);
    // A letter with marks is set as letters are.
    if (const QString parts = DialectAccents::decomposed(character); !parts.isEmpty() && token.marks().isEmpty()) {
        const QString accented = DialectAccents::accented(parts.left(1), QStringView(parts).sliced(1));
        if (!accented.isEmpty() && parts.front().isLetter())
            return FormulaPiece(accented, ordinary);
    }
    return DialectSymbols::forCharacter(character);
}

void FormulaRewriter::readCharacter(List& list, bool scripts) {
    const FormulaToken& token = m_tokens.peek();
    if (isAtScript()) // a prime or a raised digit on nothing
        return scripts ? addScripted({QStringLiteral("{}"), MTMathAtomType::ordinary}, list, true) : fail();
    if (token.is(U'~') || QChar::isSpace(token.character())) {
        m_tokens.next();
        return list.writer.addUnspaced(u"\\ ");
    }
    if (token.is(U'\u221A') || token.is(U'\u221B') || token.is(U'\u221C')) {
        if (std::optional<FormulaPiece> radical = radicalSign(list.style))
            return addScripted(std::move(*radical), list, scripts);
    }
    m_tokens.next();
    // A sign under a mark may be a sign of its own ("≠" in two characters).
    const QString composed =
        token.marks().size() == 1 ? token.text.toString().normalized(QString::NormalizationForm_C) : QString();
    if (composed.size() == 1) {
        if (const auto piece = pieceOf({Kind::character, composed}))
            return addSign(*piece, composed.front().unicode(), list, scripts);
    }
    if (const QString latex = fractionOf(token.character()); !latex.isEmpty())
        return addScripted(keptPiece(inStyle(MTLineStyle::text, latex), MTMathAtomType::ordinary), list, scripts);
    std::optional<FormulaPiece> piece = pieceOf(token);
    if (piece && !token.marks().isEmpty()) {
        piece->latex = DialectAccents::accented(piece->latex, token.marks());
        piece->meant = piece->left = piece->right = MTMathAtomType::ordinary;
    }
    if (!piece || piece->latex.isEmpty())
        return fail();
    addSign(*piece, token.character(), list, scripts);
}

void FormulaRewriter::addSign(const FormulaPiece& piece, char32_t character, List& list, bool scripts) {
    if (piece.meant == MTMathAtomType::binaryOperator && list.writer.hidesSign()) {
        if (const auto sign = DialectSymbols::ordinary(character == U'-' ? U'\u2212' : character))
            return addScripted({*sign, MTMathAtomType::ordinary}, list, scripts);
    }
    addScripted(piece, list, scripts);
}

std::optional<FormulaPiece> FormulaRewriter::radicalSign(MTLineStyle style) {
    const FormulaToken sign = m_tokens.peek();
    const FormulaToken& behind = m_tokens.peekBehind();
    const bool isDigit = behind.kind == Kind::character && QChar::isDigit(behind.character());
    const bool isLetter = behind.kind == Kind::character && QChar::isLetter(behind.character());
    const bool isParenthesis = behind.is(U'(');
    if (!isDigit && !isLetter && !isParenthesis && behind.kind != Kind::open && behind.kind != Kind::command)
        return std::nullopt;
    m_tokens.next();
    QString radicand;
    if (isDigit) {
        m_tokens.skipBlanks();
        while (m_tokens.peek().kind == Kind::character && m_tokens.peek().text.size() == 1 &&
               (m_tokens.peek().text.front().isDigit() || m_tokens.peek().is(U'.')))
            radicand += m_tokens.next().text;
    } else {
        radicand = isParenthesis ? parenthesized(style) : argument(style);
    }
    const QString degree = sign.is(U'\u221B')   ? QStringLiteral("[3]")
                           : sign.is(U'\u221C') ? QStringLiteral("[4]")
                                                : QString();
    return FormulaPiece(QLatin1String("\\sqrt") + degree + braced(radicand), MTMathAtomType::ordinary,
                        MTMathAtomType::ordinary, MTMathAtomType::radical);
}

QString FormulaRewriter::parenthesized(MTLineStyle style) {
    List list(style);
    const QScopedValueRollback depth(m_depth, m_depth + 1);
    if (m_depth > deepestNesting)
        fail();
    int open = 0;
    for (m_tokens.skipBlanks(); !isAtListEnd(); m_tokens.skipBlanks()) {
        const bool closes = m_tokens.peek().is(U')');
        open += m_tokens.peek().is(U'(') ? 1 : closes ? -1 : 0;
        const bool isLast = closes && open == 0;
        readAtom(list, !isLast);
        if (isLast)
            return list.latex();
    }
    fail();
    return {};
}

FormulaRewriter::List FormulaRewriter::readBraced(MTLineStyle style) {
    List list = readContents(style);
    if (m_tokens.next().kind != Kind::close)
        fail();
    return list;
}

FormulaRewriter::List FormulaRewriter::argumentList(MTLineStyle style) {
    m_tokens.skipBlanks();
    if (m_tokens.peek().kind == Kind::open) {
        m_tokens.next();
        return readBraced(style);
    }
    List list(style);
    const QScopedValueRollback depth(m_depth, m_depth + 1);
    if (m_depth > deepestNesting || isAtListEnd())
        fail();
    else
        readAtom(list, false);
    return list;
}

QString FormulaRewriter::argument(MTLineStyle style) {
    return argumentList(style).latex();
}

QString FormulaRewriter::rawArgument() {
    m_tokens.skipBlanks();
    if (m_tokens.peek().kind != Kind::open) {
        fail();
        return {};
    }
    QString result;
    int depth = 0;
    do {
        const FormulaToken& token = m_tokens.next();
        if (token.kind == Kind::end) {
            fail();
            return {};
        }
        depth += token.kind == Kind::open ? 1 : token.kind == Kind::close ? -1 : 0;
        if (token.kind == Kind::command)
            result += u'\\';
        result += token.text;
    } while (depth > 0);
    return result.sliced(1).chopped(1).trimmed();
}

std::optional<QString> FormulaRewriter::rawOption() {
    if (!m_tokens.peek().is(U'['))
        return std::nullopt;
    QString result;
    m_tokens.next();
    while (!m_tokens.peek().is(U']')) {
        const FormulaToken& token = m_tokens.next();
        if (token.kind == Kind::end) {
            fail();
            return std::nullopt;
        }
        result += token.text;
    }
    m_tokens.next();
    return result;
}

std::optional<QString> FormulaRewriter::option(MTLineStyle style) {
    m_tokens.skipBlanks();
    if (!m_tokens.peek().is(U'['))
        return std::nullopt;
    m_tokens.next();
    List list(style);
    const QScopedValueRollback depth(m_depth, m_depth + 1);
    if (m_depth > deepestNesting)
        fail();
    for (m_tokens.skipBlanks(); !isAtListEnd() && !m_tokens.peek().is(U']'); m_tokens.skipBlanks())
        readAtom(list, true);
    if (!m_tokens.next().is(U']'))
        fail();
    return list.latex();
}
