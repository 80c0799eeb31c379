// Commands other than those of tables, words and what stands above and below.

#include "DialectAccents.h"
#include "DialectDelimiters.h"
#include "DialectSpaces.h"
#include "DialectSymbols.h"
#include "FormulaRewriter.h"

using Type = MTMathAtomType;

static QString textOf(std::u16string_view data) {
    return QString::fromUtf16(data.data(), static_cast<qsizetype>(data.size()));
}

/// Dots are inner atoms for TeX and letters for the engine.
static Type engineTypeOf(const DialectCommands::Row& row) {
    return row.type == Type::inner ? Type::ordinary : row.type;
}

void FormulaRewriter::readCommand(List& list, bool scripts) {
    const QStringView name = m_tokens.next().text;
    if (const Row* const row = DialectCommands::named(name))
        readCommand(*row, list, scripts);
    else
        readSymbol(name, list, scripts);
}

void FormulaRewriter::readSymbol(QStringView name, List& list, bool scripts) {
    std::optional<FormulaPiece> piece = DialectSymbols::forCommand(name);
    if (!piece)
        return fail();
    if (piece->meant == Type::largeOperator) {
        m_tokens.skipBlanks();
        const FormulaToken& behind = m_tokens.peek();
        if (behind.isCommand(u"limits") || behind.isCommand(u"nolimits"))
            piece->latex += u'\\' + m_tokens.next().text.toString() + u' ';
    }
    addScripted(std::move(*piece), list, scripts);
}

void FormulaRewriter::readCommand(const Row& row, List& list, bool scripts) {
    using enum DialectCommands::Kind;
    const auto add = [&](FormulaPiece piece) { addScripted(std::move(piece), list, scripts); };
    switch (row.kind) {
    case literal:
        return add({textOf(row.data), row.type, engineTypeOf(row), engineTypeOf(row)});
    case DialectCommands::Kind::font:
        return add({textOf(row.data) + braced(argument(list.style)), Type::ordinary});
    case text:
        return add(readText(row, list.style));
    case decoration:
        return add({textOf(row.data) + braced(argument(list.style)), Type::ordinary});
    case over:
        return add(readOver(row, list.style));
    case fenced:
        return add(readFenced(row, list.style));
    case DialectCommands::Kind::fraction:
        return add(readFraction(row, list.style));
    case DialectCommands::Kind::radical:
        return add(readRadical(list.style));
    case big:
        return add(readBig(row));
    case leftRight:
        return add(readLeftRight(list.style));
    case named:
        return add(readNamed(row, list.style));
    case typed:
        return add(keptPiece(kept(argument(list.style)), row.type));
    case negated:
        return add(readNegated());
    case dots:
        return add(readDots());
    case overset:
        return add(readSet(true, list.style));
    case underset:
        return add(readSet(false, list.style));
    case overLine:
        return add(readLineWithLabel(true, list.style));
    case underLine:
        return add(readLineWithLabel(false, list.style));
    case arrow:
        return add(readArrow(row, list.style));
    case lines:
        return add(readLines(list.style));
    case displayLines:
        return add(readDisplayLines());
    case textColor:
    case DialectCommands::Kind::colorBox:
        return add(readColored(row, list.style));
    case environment:
        return add(readEnvironment(list));
    default:
        return readLayoutCommand(row, list, scripts);
    }
}

void FormulaRewriter::readLayoutCommand(const Row& row, List& list, bool scripts) {
    using enum DialectCommands::Kind;
    switch (row.kind) {
    case DialectCommands::Kind::space:
        return list.writer.addUnspaced(DialectSpaces::latex(row.number));
    case length:
        return list.writer.addUnspaced(readLength());
    case ignored:
        return;
    case ignoredArgument:
        (void)rawArgument();
        return;
    case transparent:
        return addScripted(keptPiece(kept(argument(list.style)), Type::ordinary), list, scripts);
    case phantom:
        return addScripted({readPhantom(), Type::ordinary}, list, scripts);
    case DialectCommands::Kind::style:
        return readStyle(row, list);
    case fontSwitch:
        list.writer.addUnspaced(QString(textOf(row.data) + u'{'));
        list.closers += u'}';
        return;
    case infix:
        return list.writer.addFractionMark(textOf(row.data));
    case modulo:
        list.writer.addUnspaced(DialectSpaces::latex(row.number));
        if (const QString modulus = textOf(row.data) + argument(list.style); row.name == u"mod")
            list.writer.add({modulus, Type::ordinary});
        else
            list.writer.add({u'(' + modulus + u')', Type::ordinary, Type::open, Type::close});
        return;
    case DialectCommands::Kind::tag: {
        const bool isBare = m_tokens.peek().is(U'*');
        if (isBare)
            m_tokens.next();
        m_tokens.skipBlanks();
        if (m_tokens.next().kind != Kind::open)
            return fail();
        const QString words = QLatin1String("\\mathrm") + braced(readWords(list.style));
        list.tail += QLatin1String("\\qquad ") + (isBare ? words : u'(' + words + u')');
        return;
    }
    case boxed:
        return addScripted(
            {QLatin1String("\\left|\\overline{\\underline{\\,") + argument(list.style) + QLatin1String("\\,}}\\right|"),
             Type::ordinary, Type::inner, Type::inner},
            list, scripts);
    case DialectCommands::Kind::color:
        return readColorSwitch(list, scripts);
    default:
        return fail();
    }
}

void FormulaRewriter::readStyle(const Row& row, List& list) {
    list.writer.addUnspaced(textOf(row.data));
    list.style = static_cast<MTLineStyle>(row.number);
    list.setsStyle = true;
}

FormulaPiece FormulaRewriter::readFraction(const Row& row, MTLineStyle style) {
    if (row.name == u"cfrac")
        (void)rawOption();
    const MTLineStyle own = row.number < 0 ? style : static_cast<MTLineStyle>(row.number);
    const MTLineStyle partStyle = row.name == u"cfrac" ? MTLineStyle::display : fractionStyle(own);
    const auto part = [&] {
        const QString latex = argument(partStyle);
        return braced(row.name == u"cfrac" ? QLatin1String("\\displaystyle ") + latex : latex);
    };
    const QString above = part();
    const QString latex = textOf(row.data) + above + part();
    if (own == style)
        return {latex, DialectCommands::Kind::fraction == row.kind ? Type::fraction : Type::ordinary};
    return keptPiece(inStyle(own, latex), Type::ordinary);
}

FormulaPiece FormulaRewriter::readRadical(MTLineStyle style) {
    const std::optional<QString> degree = option(MTLineStyle::scriptOfScript);
    const QString latex =
        QLatin1String("\\sqrt") + (degree ? u'[' + *degree + u']' : QString()) + braced(argument(style));
    return {latex, Type::ordinary, Type::ordinary, Type::radical};
}

QString FormulaRewriter::delimiter() {
    m_tokens.skipBlanks();
    const std::optional<QString> name = DialectDelimiters::named(m_tokens.next());
    if (!name)
        fail();
    return name.value_or(QString());
}

FormulaPiece FormulaRewriter::readBig(const Row& row) {
    const QString strut = DialectDelimiters::strut(row.number);
    const QString name = delimiter();
    const bool isRight = row.type == Type::close;
    const QString latex = QLatin1String("\\left") + (isRight ? QStringLiteral(".") : name) + strut +
                          QLatin1String("\\right") + (isRight ? name : QStringLiteral("."));
    return {latex, row.type, Type::inner, Type::inner};
}

FormulaPiece FormulaRewriter::readLeftRight(MTLineStyle style) {
    std::vector<QString> parts;
    QStringList delimiters{delimiter()};
    QString struts;
    while (!m_hasFailed) {
        List part(style);
        readList(part);
        parts.push_back(part.latex());
        if (const QString strut = DialectDelimiters::strutLike(parts.back()); strut.size() > struts.size())
            struts = strut;
        const FormulaToken& end = m_tokens.next();
        const bool isLast = end.isCommand(u"right");
        if (!isLast && !end.isCommand(u"middle"))
            fail();
        delimiters += delimiter();
        if (isLast)
            break;
    }
    if (parts.size() == 1)
        return {QLatin1String("\\left") + delimiters[0] + parts[0] + QLatin1String("\\right") + delimiters[1],
                Type::inner};
    // The engine has no delimiters between the outer ones: each part gets its own, as high as the others.
    FormulaWriter writer(style > MTLineStyle::text);
    for (std::size_t i = 0; i < parts.size(); ++i) {
        const auto at = static_cast<qsizetype>(i);
        const bool isLast = i + 1 == parts.size();
        const QString latex = QLatin1String("\\left") + delimiters[at] + parts[i] + struts + QLatin1String("\\right") +
                              (isLast ? delimiters[at + 1] : QStringLiteral("."));
        writer.add({latex, i == 0 ? Type::inner : Type::close, Type::inner, Type::inner});
    }
    return {writer.latex(), Type::inner};
}

FormulaPiece FormulaRewriter::readNamed(const Row& row, MTLineStyle style) {
    bool hasLimits = row.number == 1;
    if (m_tokens.peek().is(U'*')) {
        m_tokens.next();
        hasLimits = true;
    }
    const QString name = argument(style);
    while (m_tokens.peekBehind().isCommand(u"limits") || m_tokens.peek().isCommand(u"limits") ||
           m_tokens.peek().isCommand(u"nolimits")) {
        m_tokens.skipBlanks();
        hasLimits = m_tokens.next().text == u"limits";
    }
    QString letters;
    for (const QChar character : name) {
        if (character.isLetter())
            letters += character;
    }
    if (hasLimits) {
        for (const QStringView known : {u"argmax", u"argmin", u"esssup", u"essinf", u"plim"}) {
            if (letters == known || letters == QLatin1String("mathrm") + known.toString())
                return {u'\\' + known.toString() + u' ', Type::largeOperator};
        }
    }
    FormulaPiece piece(QLatin1String("\\mathrm") + braced(name), Type::largeOperator, Type::ordinary, Type::ordinary);
    if (!hasLimits || !isAtScript())
        return piece;
    const Scripts scripts = readScripts(style);
    return keptPiece(stack(piece.latex, rowsOf(scripts.super), rowsOf(scripts.sub), style), Type::largeOperator);
}

FormulaPiece FormulaRewriter::readNegated() {
    m_tokens.skipBlanks();
    const FormulaToken& token = m_tokens.next();
    const std::optional<char32_t> sign = token.kind == Kind::command ? DialectSymbols::characterOf(token.text)
                                         : token.character() != 0    ? std::optional(token.character())
                                                                     : std::nullopt;
    const QString composed =
        sign ? (QString::fromUcs4(&*sign, 1) + QChar(0x0338)).normalized(QString::NormalizationForm_C) : QString();
    const auto piece = composed.size() == 1 ? DialectSymbols::forCharacter(composed.front().unicode()) : std::nullopt;
    if (!piece)
        fail();
    return piece ? FormulaPiece(piece->latex, Type::relation) : FormulaPiece({}, Type::relation);
}

FormulaPiece FormulaRewriter::readDots() {
    m_tokens.skipBlanks();
    const FormulaToken& behind = m_tokens.peek();
    std::optional<FormulaPiece> next;
    if (behind.kind == Kind::character)
        next = pieceOf(behind);
    else if (behind.kind == Kind::command && !DialectCommands::named(behind.text))
        next = DialectSymbols::forCommand(behind.text);
    const bool isBetween = next && (next->meant == Type::binaryOperator || next->meant == Type::relation);
    return {isBetween ? QStringLiteral("\\cdots ") : QStringLiteral("\\ldots "), Type::inner, Type::ordinary,
            Type::ordinary};
}

FormulaPiece FormulaRewriter::readFenced(const Row& row, MTLineStyle style) {
    const QStringList delimiters = textOf(row.data).split(u' ');
    if (m_tokens.peek().is(U'*'))
        m_tokens.next();
    return {QLatin1String("\\left") + delimiters[0] + u' ' + argument(style) + QLatin1String("\\right") +
                delimiters[1] + u' ',
            Type::inner};
}

QString FormulaRewriter::readLength() {
    if (m_tokens.peek().is(U'*'))
        m_tokens.next();
    m_tokens.skipBlanks();
    QString length;
    if (m_tokens.peek().kind == Kind::open) {
        length = rawArgument();
    } else {
        // "1.5em" without braces: a number and two letters.
        constexpr qsizetype longest = 12;
        while (m_tokens.peek().kind == Kind::character && length.size() < longest && !DialectSpaces::muOf(length))
            length += m_tokens.next().text;
    }
    const std::optional<int> mu = DialectSpaces::muOf(length);
    if (!mu)
        fail();
    return DialectSpaces::latex(mu.value_or(0));
}

QString FormulaRewriter::readPhantom() {
    constexpr int letterWidth = 10; // mu
    constexpr int blankWidth = 6;
    int letters = 0;
    for (const QChar character : argument(MTLineStyle::display))
        letters += character.isLetterOrNumber() ? 1 : 0;
    // A blank counts as a letter does for what is beside it.
    return QLatin1String("\\ ") + DialectSpaces::latex(letters * letterWidth - blankWidth);
}
