// Words within formulas: their letters, signs and blanks are text.

#include "DialectAccents.h"
#include "DialectSpaces.h"
#include "DialectSymbols.h"
#include "FormulaRewriter.h"

#include <QScopedValueRollback>

static constexpr int deepestWords = 60;

FormulaPiece FormulaRewriter::readText(const Row& row, MTLineStyle style) {
    m_tokens.skipBlanks();
    if (m_tokens.next().kind != Kind::open)
        fail();
    const QString command = QString::fromUtf16(row.data.data(), static_cast<qsizetype>(row.data.size()));
    return {command + braced(readWords(style)), MTMathAtomType::ordinary};
}

QString FormulaRewriter::readWords(MTLineStyle style) {
    const QScopedValueRollback depth(m_depth, m_depth + 1);
    if (m_depth > deepestWords)
        fail();
    QString words;
    while (true) {
        const FormulaToken& token = m_tokens.peek();
        switch (token.kind) {
        case Kind::close:
            m_tokens.next();
            return words;
        case Kind::end:
            fail();
            return words;
        case Kind::open:
            m_tokens.next();
            words += readWords(style);
            break;
        case Kind::blank:
            m_tokens.next();
            words += QLatin1String("\\ ");
            break;
        case Kind::command:
            words += readWordCommand(style);
            break;
        default:
            words += token.is(U'$') ? readFormulaInWords(style) : readWordCharacter();
            break;
        }
    }
}

QString FormulaRewriter::readWordCommand(MTLineStyle style) {
    const QStringView name = m_tokens.peek().text;
    if (name == u"(")
        return readFormulaInWords(style);
    if (name == u"\\" || name == u"newline") {
        m_tokens.next();
        return QStringLiteral("\\ ");
    }
    constexpr QStringView signs = u"%&_$#{}";
    if (name.size() == 1 && signs.contains(name.front())) {
        m_tokens.next();
        return DialectSymbols::ordinary(name.front().unicode()).value_or(QString());
    }
    if (name == u"textsuperscript" || name == u"textsubscript") {
        m_tokens.next();
        m_tokens.skipBlanks();
        if (m_tokens.next().kind != Kind::open)
            fail();
        return (name == u"textsuperscript" ? u'^' : u'_') + braced(readWords(scriptStyle(style)));
    }
    // Any other is one of formulas; blanks behind it end its name.
    List list(style);
    const Row* const row = DialectCommands::named(name);
    readCommand(list, false);
    if (name.front().isLetter() && (!row || row->kind != DialectCommands::Kind::text))
        m_tokens.skipBlanks();
    return row && row->kind == DialectCommands::Kind::text ? list.latex()
                                                           : QLatin1String("\\mathnormal") + braced(list.latex());
}

QString FormulaRewriter::readFormulaInWords(MTLineStyle style) {
    const bool isDollar = m_tokens.next().kind == Kind::character;
    const auto isEnd = [&] { return isDollar ? m_tokens.peek().is(U'$') : m_tokens.peek().isCommand(u")"); };
    List list(style);
    for (m_tokens.skipBlanks(); !isAtListEnd() && !isEnd(); m_tokens.skipBlanks())
        readAtom(list, true);
    if (!isEnd())
        fail();
    m_tokens.next();
    return QLatin1String("\\mathnormal") + braced(list.latex());
}

QString FormulaRewriter::readWordCharacter() {
    const FormulaToken& token = m_tokens.peek();
    if (token.marks().isEmpty()) {
        const QChar::Decomposition tag = QChar::decompositionTag(token.character());
        QString script;
        if (tag == QChar::Super || tag == QChar::Sub)
            readScriptCharacters(script, tag == QChar::Super);
        if (!script.isEmpty())
            return (tag == QChar::Super ? u'^' : u'_') + braced(script);
    }
    m_tokens.next();
    QString text = token.text.toString();
    // Ligatures of TeX.
    if (m_tokens.peek().text == token.text && (token.is(U'-') || token.is(U'\'') || token.is(U'`'))) {
        m_tokens.next();
        text = token.is(U'-')   ? QStringLiteral("\u2013")
               : token.is(U'`') ? QStringLiteral("\u201C")
                                : QStringLiteral("\u201D");
        if (token.is(U'-') && m_tokens.peek().is(U'-')) {
            m_tokens.next();
            text = QStringLiteral("\u2014");
        }
    } else if (token.is(U'\'')) {
        text = QStringLiteral("\u2019");
    } else if (token.is(U'`')) {
        text = QStringLiteral("\u2018");
    } else if (token.is(U'-')) {
        text = QStringLiteral("\u2010");
    }
    if (text == u'~' || text.front().isSpace())
        return QStringLiteral("\\ ");
    constexpr qsizetype longest = 4; // a letter with marks
    if (text.size() > 1 && text.size() <= longest)
        text = text.normalized(QString::NormalizationForm_C);
    const bool isPlain =
        text.size() == 1 && text.front().unicode() < 0x80 && (text.front().isLetterOrNumber() || text == u'.');
    if (isPlain)
        return text;
    const QList<uint> characters = text.toUcs4();
    if (characters.size() == 1) {
        if (const auto sign = DialectSymbols::ordinary(characters.front()))
            return *sign;
        const QString parts = DialectAccents::decomposed(characters.front());
        if (!parts.isEmpty())
            text = parts;
    }
    QString accented = text.size() > 1 && text.front().isLetter() && text.front().unicode() < 0x80
                           ? DialectAccents::accented(text.left(1), QStringView(text).sliced(1))
                           : QString();
    if (accented.isEmpty())
        fail();
    return accented;
}
