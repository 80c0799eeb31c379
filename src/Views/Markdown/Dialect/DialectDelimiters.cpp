#include "DialectDelimiters.h"

#include "DialectSymbols.h"
#include "MTMathAtom.h"
#include "MTMathAtomFactory.h"

#include <QString>

std::optional<QString> DialectDelimiters::named(const FormulaToken& token) {
    struct Name {
        QStringView name;
        QStringView delimiter;
    };
    static constexpr Name names[] = {
        {u"lvert", u"|"},
        {u"rvert", u"|"},
        {u"lVert", u"\\|"},
        {u"rVert", u"\\|"},
        {u"|", u"\\|"},
        {u"lbrack", u"["},
        {u"rbrack", u"]"},
        {u"lt", u"\\langle "},
        {u"gt", u"\\rangle "},
        {u"mid", u"|"},
        {u"parallel", u"\\|"},
        {u"\u27E8", u"\\langle "},
        {u"\u27E9", u"\\rangle "},
        {u"\u2308", u"\\lceil "},
        {u"\u2309", u"\\rceil "},
        {u"\u230A", u"\\lfloor "},
        {u"\u230B", u"\\rfloor "},
        {u"\u2016", u"\\|"},
        {u"\u2223", u"|"},
    };
    const bool isCommand = token.kind == FormulaToken::Kind::command;
    if (!isCommand && token.kind != FormulaToken::Kind::character)
        return std::nullopt;
    const bool isAscii = !token.text.isEmpty() && token.text.front().unicode() < 0x80;
    for (const Name& row : names) {
        if (row.name == token.text && (isCommand || !isAscii))
            return row.delimiter.toString();
    }
    if (!MTMathAtomFactory::boundaryForDelimiter(token.text))
        return std::nullopt;
    if (!isCommand)
        return token.text.toString();
    return u'\\' + token.text.toString() + u' ';
}

QString DialectDelimiters::strut(int level) {
    // Empty rows: those of a matrix are 1.2 ems apart, lines 1.5.
    switch (level) {
    case 1:
        return QStringLiteral("\\begin{matrix}\\\\\\end{matrix}");
    case 2:
        return QStringLiteral("\\begin{displaylines}\\\\\\end{displaylines}");
    case 3:
        return QStringLiteral("\\begin{matrix}\\\\\\\\\\end{matrix}");
    default:
        return QStringLiteral("\\begin{displaylines}\\\\\\\\\\end{displaylines}");
    }
}

QString DialectDelimiters::strutLike(QStringView latex) {
    QString result;
    if (latex.contains(QLatin1String("\\frac")))
        result += QLatin1String("\\color{}{\\frac{}{}}");
    for (const char* const high : {"\\sum", "\\prod", "\\int", "\\oint", "\\begin"}) {
        if (latex.contains(QLatin1String(high)))
            return result + QLatin1String("\\color{}{") + strut(3) + u'}';
    }
    return result;
}
