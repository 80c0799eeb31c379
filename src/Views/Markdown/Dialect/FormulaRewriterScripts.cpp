// What stands at an atom: superscripts, subscripts and primes.

#include "DialectSymbols.h"
#include "FormulaRewriter.h"

#include <QHash>

namespace {

/// Of the primes that a character stands for.
int primesOf(char32_t character) {
    switch (character) {
    case U'\'':
    case U'\u2019':
    case U'\u2032':
    case U'\u02B9':
        return 1;
    case U'\u2033':
        return 2;
    case U'\u2034':
        return 3;
    case U'\u2057':
        return 4;
    default:
        return 0;
    }
}

struct RaisedOrLowered {
    QString text;
    bool isRaised;
};

/// What a character such as "²" or "₁" shows, raised or lowered; none for any other.
std::optional<RaisedOrLowered> scriptOf(char32_t character) {
    const QChar::Decomposition tag = QChar::decompositionTag(character);
    if (tag != QChar::Super && tag != QChar::Sub)
        return std::nullopt;
    const QString text = QChar::decomposition(character);
    const bool isShown = text == u'\u2212' || (text.size() == 1 && text.front().unicode() < 0x80);
    if (!isShown) // "ᵝ" and the like
        return std::nullopt;
    return RaisedOrLowered{text == u'\u2212' ? QStringLiteral("-") : text, tag == QChar::Super};
}

} // namespace

bool FormulaRewriter::isAtScript() {
    const FormulaToken& token = m_tokens.peek();
    switch (token.kind) {
    case Kind::superscript:
    case Kind::subscript:
        return true;
    case Kind::blank: {
        const FormulaToken& behind = m_tokens.peekBehind();
        return behind.kind == Kind::superscript || behind.kind == Kind::subscript || primesOf(behind.character()) > 0;
    }
    case Kind::character:
        return token.marks().isEmpty() && (primesOf(token.character()) > 0 || scriptOf(token.character()));
    default:
        return false;
    }
}

FormulaRewriter::Scripts FormulaRewriter::readScripts(MTLineStyle style) {
    Scripts scripts;
    while (isAtScript()) {
        m_tokens.skipBlanks();
        const FormulaToken& token = m_tokens.peek();
        const bool isSuper = token.kind == Kind::superscript;
        if (isSuper || token.kind == Kind::subscript) {
            // A second one stands on nothing.
            if (isSuper ? scripts.hasSuper && !scripts.isPrime : scripts.hasSub)
                break;
            readScriptMark(scripts, style);
        } else if (primesOf(token.character()) > 0) {
            readPrimes(scripts);
        } else {
            const bool isRaised = scriptOf(token.character())->isRaised;
            if (isRaised ? scripts.hasSuper && !scripts.isPrime : scripts.hasSub)
                break;
            readScriptCharacters(isRaised ? scripts.super : scripts.sub, isRaised);
            (isRaised ? scripts.hasSuper : scripts.hasSub) = true;
            scripts.isPrime = scripts.isPrime && !isRaised;
        }
    }
    return scripts;
}

void FormulaRewriter::readScriptMark(Scripts& scripts, MTLineStyle style) {
    const bool isSuper = m_tokens.next().kind == Kind::superscript;
    m_tokens.skipBlanks();
    if (isSuper && primesOf(m_tokens.peek().character()) > 0)
        return readPrimes(scripts);
    const QString script = argument(scriptStyle(style));
    if (isSuper) {
        scripts.super += script;
        scripts.hasSuper = true;
        scripts.isPrime = false;
    } else {
        scripts.sub = script;
        scripts.hasSub = true;
    }
}

void FormulaRewriter::readPrimes(Scripts& scripts) {
    scripts.isPrime = scripts.isPrime || !scripts.hasSuper;
    scripts.hasSuper = true;
    for (int primes = primesOf(m_tokens.next().character()); primes > 0; --primes)
        scripts.super += QLatin1String("\\prime ");
}

void FormulaRewriter::readScriptCharacters(QString& script, bool isSuper) {
    while (m_tokens.peek().kind == Kind::character) {
        const auto character = scriptOf(m_tokens.peek().character());
        if (!character || character->isRaised != isSuper)
            return;
        m_tokens.next();
        script += character->text;
    }
}

QString FormulaRewriter::latexOf(const Scripts& scripts) {
    QString latex;
    if (scripts.hasSuper)
        latex += u'^' + braced(scripts.super);
    if (scripts.hasSub)
        latex += u'_' + braced(scripts.sub);
    return latex;
}

void FormulaRewriter::addScripted(FormulaPiece piece, List& list, bool scripts) {
    if (scripts) {
        QString latex = latexOf(readScripts(list.style));
        piece.latex += latex;
        while (!latex.isEmpty() && isAtScript()) {
            latex = latexOf(readScripts(list.style));
            piece.latex += QLatin1String("{}") + latex;
        }
    }
    list.writer.add(piece);
}
