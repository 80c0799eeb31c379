#include "MTCommandTables.h"
#include "MTAccent.h"
#include "MTAccentedCharacters.h"
#include "MTFraction.h"
#include "MTMathAtomFactory.h"
#include "MTMathList.h"
#include "MTMathListBuilder.h"
#include "MTRadical.h"
#include "MathListDump.h"

#include <QSet>
#include <QStringList>

#include <gtest/gtest.h>

using MTCommandTables::string;

namespace {

/// The formula of `source`, written and read again, is the same.
void expectRoundTrip(const QString& source) {
    const auto list = MTMathListBuilder::build(source);
    ASSERT_TRUE(list) << qPrintable(source) << ": " << qPrintable(dumpOfSource(source));
    ASSERT_FALSE(list->isEmpty()) << qPrintable(source);
    const QString written = MTMathListBuilder::mathListToString(list);
    EXPECT_EQ(dumpOfSource(written).toStdString(), dump(list).toStdString())
        << qPrintable(source) << " is written " << qPrintable(written);
}

/// Every canonical part of a character, however deep.
QString decomposed(char32_t character) {
    return QString::fromUcs4(&character, 1).normalized(QString::NormalizationForm_D);
}

/// The letter of an accented atom with its marks behind it, as Unicode writes it.
QString spelledOut(const MTMathAtom& atom) {
    const auto* const accent = dynamic_cast<const MTAccent*>(&atom);
    if (!accent)
        return atom.nucleus;
    EXPECT_EQ(accent->innerList->atoms().size(), 1U);
    return spelledOut(*accent->innerList->atoms().front()) + accent->nucleus;
}

} // namespace

TEST(MTCommandTables, holdEveryName) {
    QSet<QString> names;
    for (const QString& name : MTMathAtomFactory::supportedLatexSymbolNames())
        names.insert(name);
    EXPECT_EQ(names.size(), 237);
    EXPECT_EQ(MTMathAtomFactory::supportedLatexSymbolNames().size(), 237U) << "no name is there twice";
    EXPECT_EQ(MTCommandTables::allAliases().size(), 13U);
    EXPECT_EQ(MTCommandTables::allDelimiters().size(), 32U);
    EXPECT_EQ(MTCommandTables::allAccents().size(), 12U);
    EXPECT_EQ(MTCommandTables::allFontStyleNames().size(), 22U);
    EXPECT_EQ(MTCommandTables::allMatrixEnvironments().size(), 6U);
    // Every alias leads to a symbol, and hides none.
    for (const auto& alias : MTCommandTables::allAliases()) {
        EXPECT_TRUE(names.contains(string(alias.symbol)));
        EXPECT_FALSE(names.contains(string(alias.name)));
        EXPECT_EQ(dump(*MTMathAtomFactory::atomForLatexSymbol(alias.name)),
                  dump(*MTMathAtomFactory::atomForLatexSymbol(alias.symbol)));
    }
    EXPECT_FALSE(MTMathAtomFactory::atomForLatexSymbol(u"Alph"));
    EXPECT_FALSE(MTMathAtomFactory::atomForLatexSymbol(u""));
}

TEST(MTCommandTables, leadBackToTheShortestName) {
    const auto nameOf = [](QStringView symbol) {
        return MTMathAtomFactory::latexSymbolName(*MTMathAtomFactory::atomForLatexSymbol(symbol))
            .value_or(QStringLiteral("none"));
    };
    EXPECT_EQ(nameOf(u"varsigma"), u"rho");
    EXPECT_EQ(nameOf(u"to"), u"rightarrow");
    EXPECT_EQ(nameOf(u"Vert"), u"|");
    EXPECT_EQ(nameOf(u"limsup"), u"limsup");
    EXPECT_EQ(nameOf(u"quad"), u"none");

    const auto delimiterNameOf = [](QStringView name) {
        return *MTMathAtomFactory::delimiterName(*MTMathAtomFactory::boundaryForDelimiter(name));
    };
    EXPECT_EQ(delimiterNameOf(u"Vert"), u"||");
    EXPECT_EQ(delimiterNameOf(u"vert"), u"|");
    EXPECT_EQ(delimiterNameOf(u"lbrace"), u"{");
    EXPECT_EQ(delimiterNameOf(u"backslash"), u"\\");
    EXPECT_EQ(delimiterNameOf(u"langle"), u"<");
    EXPECT_EQ(delimiterNameOf(u"."), u".");
    EXPECT_FALSE(MTMathAtomFactory::boundaryForDelimiter(u"alpha"));
    EXPECT_FALSE(MTMathAtomFactory::delimiterName(MTMathAtom(MTMathAtomType::open, QStringLiteral("("))));

    EXPECT_EQ(MTMathAtomFactory::accentName(*MTMathAtomFactory::accentWithName(u"widetilde")), u"tilde");
    EXPECT_FALSE(MTMathAtomFactory::accentWithName(u"ring"));
}

TEST(MTCommandTables, everythingWrittenIsReadAgain) {
    for (const QString& name : MTMathAtomFactory::supportedLatexSymbolNames()) {
        if (name == u"&")
            continue; // parts cells even behind a backslash
        expectRoundTrip(u'\\' + name + QStringLiteral(" x"));
        expectRoundTrip(QStringLiteral("x^{\\") + name + QStringLiteral(" }"));
    }
    for (const auto& accent : MTCommandTables::allAccents())
        expectRoundTrip(u'\\' + string(accent.name) + QStringLiteral("{xy}_i^2"));
    for (const auto& delimiter : MTCommandTables::allDelimiters()) {
        // All but single visible characters are commands.
        QString name = string(delimiter.name);
        if (name == u"||")
            name = QStringLiteral("|");
        const bool isPlain = delimiter.name.size() == 1 && !QStringLiteral("\\{}").contains(name);
        const QString source = isPlain ? name : u'\\' + name;
        expectRoundTrip(QStringLiteral("\\left") + source + QStringLiteral(" x\\right") + source +
                        QStringLiteral(" y"));
    }
    for (const auto& style : MTCommandTables::allFontStyleNames()) {
        expectRoundTrip(u'\\' + string(style.name) + QStringLiteral("{xy\\frac{a}{1}}z"));
        EXPECT_EQ(MTMathAtomFactory::fontStyleWithName(MTMathAtomFactory::fontNameForStyle(style.style)), style.style);
    }
    for (const auto& fraction : MTCommandTables::allFractionCommands())
        expectRoundTrip(QStringLiteral("1+{a \\") + string(fraction.name) + QStringLiteral(" b}^2"));
    for (const auto& environment : MTCommandTables::allMatrixEnvironments()) {
        const QString name = string(environment.name);
        expectRoundTrip(QStringLiteral("\\begin{") + name + QStringLiteral("}a&b\\\\c\\end{") + name +
                        QStringLiteral("}x"));
    }
    for (const QString& name : {QStringLiteral("eqalign"), QStringLiteral("split"), QStringLiteral("aligned")})
        expectRoundTrip(QStringLiteral("\\begin{") + name + QStringLiteral("}a&=b^2\\\\&^2\\end{") + name +
                        QStringLiteral("}"));
    expectRoundTrip(QStringLiteral("\\begin{displaylines}a\\\\b\\end{displaylines}"));
    expectRoundTrip(QStringLiteral("\\begin{gather}a\\\\b\\end{gather}"));
    expectRoundTrip(QStringLiteral("\\begin{eqnarray}a&=&b\\\\c&=&d\\end{eqnarray}"));
    expectRoundTrip(QStringLiteral("a&b\\\\c"));
    expectRoundTrip(QStringLiteral("\\text{for all x}\\sqrt[n]{\\overline{x}\\underline y}-3:4\\color{#f00}{\\bm v}"));
}

TEST(MTAccentedCharacters, areThoseThatUnicodeTakesApart) {
    QSet<QChar> marks;
    for (const auto& accent : MTCommandTables::allAccents())
        marks.insert(accent.character.front());
    int count = 0;
    for (char32_t character = 0x80; character < 0x10000; ++character) {
        if (QChar::isSurrogate(character))
            continue;
        const QString text = QString::fromUcs4(&character, 1);
        const QString parts = decomposed(character);
        const bool isExpected =
            QChar::script(character) == QChar::Script_Latin && parts.size() > 1 && marks.contains(parts.back());
        const auto atom = MTMathAtomFactory::atomForCharacter(text);
        const bool isAccent = std::dynamic_pointer_cast<MTAccent>(atom) != nullptr;
        ASSERT_EQ(isAccent, isExpected) << std::hex << static_cast<unsigned>(character);
        if (!isExpected)
            continue;
        ++count;
        EXPECT_EQ(spelledOut(*atom).normalized(QString::NormalizationForm_D), parts) << qPrintable(text);
        EXPECT_EQ(dump(*MTMathAtomFactory::atomForCharacter(parts)), dump(*atom)) << qPrintable(text);
    }
    EXPECT_EQ(static_cast<std::size_t>(count), supportedAccentedCharacters().size());
    for (const MTAccentedCharacter& row : supportedAccentedCharacters())
        EXPECT_TRUE(MTMathAtomFactory::accentWithName(row.accentName));

    // What every European keyboard types.
    EXPECT_EQ(dumpOfSource(u"\u00FC\u00F1\u00C0\u0177\u0161"),
              u"accent:U+0308(var:u) accent:U+0303(var:n) accent:U+0300(var:A) accent:U+0302(var:y) "
              u"accent:U+030c(var:s)");
    EXPECT_EQ(dumpOfSource(u"\u01FD"), u"accent:U+0301(ord:\u00E6)");
    EXPECT_EQ(dumpOfSource(u"\u00E5\u0105\u0151\u00E7\u00DF"), u"") << "ring, ogonek, double acute, cedilla, sharp s";
}

TEST(MTMathAtomFactory, makesSmallFormulas) {
    EXPECT_EQ(dump(*MTMathAtomFactory::times()), u"bin:\u00D7");
    EXPECT_EQ(dump(*MTMathAtomFactory::divide()), u"bin:\u00F7");
    EXPECT_EQ(dump(*MTMathAtomFactory::placeholder()), dumpOfSource(u"\\square"));
    EXPECT_EQ(dump(*MTMathAtomFactory::placeholderFraction()), dumpOfSource(u"\\frac\\square\\square"));
    EXPECT_EQ(dump(*MTMathAtomFactory::placeholderSquareRoot()), dumpOfSource(u"\\sqrt\\square"));
    EXPECT_EQ(dump(*MTMathAtomFactory::placeholderRadical()), dumpOfSource(u"\\sqrt[\\square]\\square"));
    EXPECT_EQ(dump(*MTMathAtomFactory::fraction(u"x+1", u"2")), dumpOfSource(u"\\frac{x+1}{2}"));
    EXPECT_EQ(dump(MTMathAtomFactory::mathListForCharacters(u"a \u00E9{-}")), u"var:a accent:U+0301(var:e) bin:\u2212");
}

TEST(MTMathAtomFactory, learnsSymbols) {
    MTMathAtom star(MTMathAtomType::binaryOperator, QStringLiteral("\u2605"));
    MTMathAtomFactory::addLatexSymbol(QStringLiteral("bigstar"), star);
    MTMathAtomFactory::addLatexSymbol(QStringLiteral("filledstar"), star);
    star.nucleus = QStringLiteral("changed");
    EXPECT_EQ(dumpOfSource(u"a\\bigstar b\\filledstar"), u"var:a bin:\u2605 var:b bin:\u2605");
    expectRoundTrip(QStringLiteral("\\filledstar x"));
    EXPECT_EQ(MTMathAtomFactory::latexSymbolName(*MTMathAtomFactory::atomForLatexSymbol(u"filledstar")), u"bigstar");
    // In place of one of the table; templates are never handed out themselves.
    MTMathAtomFactory::addLatexSymbol(QStringLiteral("mho"),
                                      MTMathAtom(MTMathAtomType::relation, QStringLiteral("mho!")));
    MTMathAtomFactory::atomForLatexSymbol(u"mho")->nucleus = QStringLiteral("spoilt");
    EXPECT_EQ(dumpOfSource(u"\\mho"), u"rel:mho!");
}
