#include "MTMathListBuilder.h"
#include "MTMathAtomFactory.h"
#include "MTMathList.h"
#include "MathListDump.h"

#include <gtest/gtest.h>

namespace {

struct Case {
    QStringView source;
    QStringView expected;
};

void check(std::initializer_list<Case> cases) {
    for (const Case& row : cases) {
        const QString actual = dumpOfSource(row.source);
        EXPECT_TRUE(actual == row.expected) << row.source.toUtf8().constData() << "\n  gives   " << qPrintable(actual)
                                            << "\n  expected " << row.expected.toUtf8().constData();
    }
}

} // namespace

TEST(MTMathListBuilder, readsCharacters) {
    check({
        {u"", u""},
        {u" \t\n", u""},
        {u"x + 1", u"var:x bin:+ num:1"},
        {u"aZ0.", u"var:a var:Z num:0 num:."},
        {u"([)]!?", u"open:( open:[ close:) close:] close:! close:?"},
        {u",;:=<>", u"punct:, punct:; rel:\u2236 rel:= rel:< rel:>"},
        {u"+-*", u"bin:+ bin:\u2212 bin:*"},
        {u"\"/@`|", u"ord:\" ord:/ ord:@ ord:` ord:|"},
        {u"a$%#~'b", u"var:a var:b"},
        {u"a\u4E2D\u2192\U0001F600b", u"var:a var:b"},
        {u"\u0416\u044F\u0451\u0435\u0308", u"ord:\u0416 ord:\u044F"},
        {u"\u0438\u0306\u044B\u0301", u"ord:\u0439 ord:\u044B\u0301"},
        {u"\u00E9", u"accent:U+0301(var:e)"},
        {u"e\u0301x", u"accent:U+0301(var:e) var:x"},
        {u"\u1EBF", u"accent:U+0301(accent:U+0302(var:e))"},
        {u"a\r\nb\rc", u"var:a var:b var:c"},
        {u"q\u0302", u""},
    });
    // Halves of surrogate pairs are no characters.
    const char16_t broken[] = {u'a', 0xD835, u'b', 0xDC00};
    EXPECT_EQ(dumpOfSource(QStringView(broken, 4)), u"var:a var:b");
}

TEST(MTMathListBuilder, readsScriptsAndGroups) {
    check({
        {u"x^2", u"var:x^(num:2)"},
        {u"x_i^2", u"var:x^(num:2)_(var:i)"},
        {u"x^{ab}_{c}", u"var:x^(var:a var:b)_(var:c)"},
        {u"^2", u"ord:^(num:2)"},
        {u"a^2^3", u"var:a^(num:2) ord:^(num:3)"},
        {u"a_1_2", u"var:a_(num:1) ord:_(num:2)"},
        {u"x^^2", u"var:x^() ord:^(num:2)"},
        {u"x^\\frac12", u"var:x^(frac[ ](num:1)(num:2))"},
        {u"x^", u"var:x^()"},
        {u"{ab}^2", u"var:a var:b^(num:2)"},
        {u"{}^2", u"ord:^(num:2)"},
        {u"x{}_2", u"var:x ord:_(num:2)"},
        {u"{{{x}}}", u"var:x"},
        {u"\\quad^2", u"space:18 ord:^(num:2)"},
        {u"\\color{red}{x}^2", u"color{red}(var:x) ord:^(num:2)"},
        {u"\\sqrt{x}^2", u"sqrt[-](var:x)^(num:2)"},
    });
}

TEST(MTMathListBuilder, readsCommands) {
    check({
        {u"\\alpha\\to\\infty", u"var:\u03B1 rel:\u2192 ord:\u221E"},
        {u"\\alpha b\\beta3", u"var:\u03B1 var:b var:\u03B2 num:3"},
        {u"\\ne\\Vert\\varsigma", u"rel:\u2260 ord:\u2016 var:\u03C1"},
        {u"\\{\\}\\$\\#\\%\\_\\|\\ ", u"open:{ close:} ord:$ ord:# ord:% ord:_ ord:\u2016 ord: "},
        {u"\\,\\>\\;\\!\\quad\\qquad", u"space:3 space:4 space:5 space:-3 space:18 space:36"},
        {u"\\scriptscriptstyle\\displaystyle x", u"style:3 style:0 var:x"},
        {u"\\frac{a}{b}", u"frac[ ](var:a)(var:b)"},
        {u"\\frac12", u"frac[ ](num:1)(num:2)"},
        {u"\\frac{}{}", u"frac[ ]()()"},
        {u"\\binom nk", u"atop[( )](var:n)(var:k)"},
        {u"{a+b \\over c}d", u"frac[ ](var:a bin:+ var:b)(var:c) var:d"},
        {u"a \\atop b \\over c", u"atop[ ](var:a)(frac[ ](var:b)(var:c))"},
        {u"n\\choose k", u"atop[( )](var:n)(var:k)"},
        {u"{a\\brack b}{a\\brace b}", u"atop[[ ]](var:a)(var:b) atop[{ }](var:a)(var:b)"},
        {u"\\sqrt2", u"sqrt[-](num:2)"},
        {u"\\sqrt[3]{x}", u"sqrt[num:3](var:x)"},
        {u"\\sqrt [3]", u"sqrt[-](open:[) num:3 close:]"},
        {u"\\hat x\\widehat{xy}", u"accent:U+0302(var:x) accent:U+0302(var:x var:y)"},
        {u"\\overline{ab}\\underline c", u"overline(var:a var:b) underline(var:c)"},
        {u"\\sum_i^n\\int\\lim", u"op+limits:\u2211^(var:n)_(var:i) op:\u222B op+limits:lim"},
        {u"\\sin\\limits_x", u"op+limits:sin_(var:x)"},
        {u"\\sum_i\\nolimits", u"op:\u2211_(var:i)"},
        {u"\\limsup", u"op+limits:lim sup"},
        {u"\\color{#Ff0}x\\textcolor{ red }{y}\\colorbox{}{z}", u"color{#Ff0}(var:x) textcolor{red}(var:y) "
                                                                u"colorbox{}(var:z)"},
    });
}

TEST(MTMathListBuilder, readsDelimiters) {
    check({
        {u"\\left( x \\right)^2", u"inner[( )](var:x)^(num:2)"},
        {u"\\left. x \\right|", u"inner[ |](var:x)"},
        {u"\\left\\| x \\right\\Vert", u"inner[\u2016 \u2016](var:x)"},
        {u"\\left\\{ x \\right >", u"inner[{ \u232A](var:x)"},
        {u"\\left\\lceil\\left[x\\right]\\right\\rfloor", u"inner[\u2308 \u230B](inner[[ ]](var:x))"},
        {u"\\left\\\\ x\\right/", u"inner[\\ /](var:x)"},
        {u"\\left(a\\over b\\right)", u"inner[( )](frac[ ](var:a)(var:b))"},
        {u"\\lceil x\\rceil\\langle y\\rangle", u"open:\u2308 var:x close:\u2309 open:\u27E8 var:y close:\u27E9"},
    });
}

TEST(MTMathListBuilder, readsFontStyles) {
    check({
        {u"\\mathbf{xy}z", u"var:x@bold var:y@bold var:z"},
        {u"\\rm xy", u"var:x@roman var:y"},
        {u"\\mathbf{x}^2", u"var:x@bold^(num:2)"},
        {u"\\mathbf{x^2\\frac{a}{b}}", u"var:x@bold^(num:2@bold) frac[ ](var:a@bold)(var:b@bold)@bold"},
        {u"\\mathbf{a\\mathit{b}c}d", u"var:a@bold var:b@italic var:c@bold var:d"},
        {u"x^\\mathbf{ab}c", u"var:x^(var:a@bold var:b@bold) var:c"},
        {u"\\text{a b}c d", u"var:a@roman ord: @roman var:b@roman var:c var:d"},
        {u"\\mathrm{a b}", u"var:a@roman var:b@roman"},
        {u"\\text{a \\mathit{b c} d}", u"var:a@roman ord: @roman var:b@italic var:c@italic ord: @roman var:d@roman"},
    });
}

TEST(MTMathListBuilder, readsTables) {
    check({
        {u"a & b", u"table:[ll 0 1](var:a&var:b)"},
        {u"a \\\\ b", u"table:[l 0 1](var:a\\var:b)"},
        {u"a\\cr b & c", u"table:[ll 0 1](var:a\\var:b&var:c)"},
        {u"a\\\\", u"table:[l 0 1](var:a)"},
        {u"\\begin{matrix}a&b\\\\c\\end{matrix}", u"table:matrix[ 18 0](style:1 var:a&style:1 var:b\\style:1 var:c)"},
        {u"\\begin { matrix } \\end{matrix}", u"table:matrix[ 18 0](style:1)"},
        {u"\\begin{pmatrix}a\\end{pmatrix}", u"inner[( )](table:matrix[ 18 0](style:1 var:a))"},
        {u"\\begin{vmatrix}a\\end{vmatrix}", u"inner[| |](table:matrix[ 18 0](style:1 var:a))"},
        {u"\\begin{Vmatrix}a\\end{Vmatrix}^2", u"inner[\u2016 \u2016](table:matrix[ 18 0](style:1 var:a))^(num:2)"},
        {u"\\begin{aligned}a&=b\\\\&=c\\end{aligned}",
         u"table:aligned[rl 0 1](var:a&ord: rel:= var:b\\&ord: rel:= var:c)"},
        {u"\\begin{gather}a\\\\b\\end{gather}", u"table:gather[c 0 1](var:a\\var:b)"},
        {u"\\begin{eqnarray}a&=&b\\end{eqnarray}", u"table:eqnarray[rcl 18 1](var:a&rel:=&var:b)"},
        {u"\\begin{cases}a&b\\\\c&d\\end{cases}",
         u"inner[{ ](table:cases[ll 18 0](style:1 var:a&style:1 var:b\\style:1 var:c&style:1 var:d))"},
        {u"\\begin{gather}\\begin{matrix}a&b\\end{matrix}\\\\c\\end{gather}",
         u"table:gather[c 0 1](table:matrix[ 18 0](style:1 var:a&style:1 var:b)\\var:c)"},
        {u"\\begin{matrix}a\\over b&c\\end{matrix}",
         u"table:matrix[ 18 0](style:1 frac[ ](var:a)(var:b)&style:1 var:c)"},
    });
    // One object stands in front of all cells.
    const auto list = MTMathListBuilder::build(u"\\begin{aligned}a&b\\\\c&d\\end{aligned}");
    ASSERT_TRUE(list);
    EXPECT_EQ(dump(list->finalized()), u"table:aligned[rl 0 1](var:a{0+1}&ord:{0+1} var:b{1+1}\\var:c{0+1}&"
                                       u"ord:{0+1} var:d{1+1}){0+1}");
}

TEST(MTMathListBuilder, saysWhatIsWrong) {
    check({
        {u"}", u"error 1: Mismatched braces."},
        {u"x}", u"error 1: Mismatched braces."},
        {u"{", u"error 1: Missing closing brace"},
        {u"\\frac{a", u"error 1: Missing closing brace"},
        {u"{a & b}", u"error 1: Mismatched braces."},
        {u"\\foo", u"error 2: Invalid command \\foo"},
        {u"\\", u"error 2: Invalid command \\"},
        {u"\\1", u"error 2: Invalid command \\"},
        {u"a\\&b", u"error 2: Invalid command \\"},
        {u"\\\u00E9t\u00E9 x", u"error 2: Invalid command \\\u00E9t\u00E9"},
        {u"\\foo}{\\bar", u"error 2: Invalid command \\foo"},
        {u"\\sqrt[3", u"error 3: Expected character not found: ]"},
        {u"\\color red", u"error 3: Missing {"},
        {u"\\color{red;}{x}", u"error 3: Missing }"},
        {u"\\begin", u"error 3: Missing {"},
        {u"\\begin{matrix*}x", u"error 3: Missing }"},
        {u"\\begin{matrix}x\\end", u"error 3: Missing {"},
        {u"\\left", u"error 4: Missing delimiter for \\left"},
        {u"\\left( x\\right  ", u"error 4: Missing delimiter for \\right"},
        {u"\\left q", u"error 5: Invalid delimiter for left: q"},
        {u"\\left(x\\right\\alpha", u"error 5: Invalid delimiter for right: alpha"},
        {u"\\left\\", u"error 5: Invalid delimiter for left: "},
        {u"\\left( x", u"error 6: Missing \\right"},
        {u"x \\right)", u"error 7: Missing \\left"},
        {u"\\left(x\\right)\\right)", u"error 7: Missing \\left"},
        {u"\\begin{matrix} x \\end{pmatrix}",
         u"error 8: Begin environment name matrix does not match end name: pmatrix"},
        {u"a & b \\end{matrix}", u"error 8: Begin environment name (none) does not match end name: matrix"},
        {u"\\begin{foo} x \\end{foo}", u"error 8: Unknown environment foo"},
        {u"\\end{matrix}", u"error 10: Missing \\begin"},
        {u"\\begin{matrix}x\\end{matrix}\\end{matrix}", u"error 10: Missing \\begin"},
        {u"\\begin{matrix} x", u"error 11: Missing \\end"},
        {u"\\begin{aligned}a&b&c\\end{aligned}", u"error 12: aligned environment can only have 2 columns"},
        {u"\\begin{eqalign}a\\end{eqalign}", u"error 12: eqalign environment can only have 2 columns"},
        {u"\\begin{gather}a&b\\end{gather}", u"error 12: gather environment can only have 1 column"},
        {u"\\begin{eqnarray}a&b\\end{eqnarray}", u"error 12: eqnarray environment can only have 3 columns"},
        {u"\\begin{cases}a\\end{cases}", u"error 12: cases environment can only have 2 columns"},
        {u"x\\limits", u"error 14: Limits can only be applied to an operator."},
        {u"\\limits", u"error 14: Limits can only be applied to an operator."},
        {u"\\nolimits_x", u"error 14: No limits can only be applied to an operator."},
    });
    EXPECT_EQ(MTParseError::domain(), u"ParseError");
    EXPECT_FALSE(MTMathListBuilder::build(u"{"));
    std::optional<MTParseError> error = MTParseError{MTParseErrors::missingEnd, {}};
    EXPECT_TRUE(MTMathListBuilder::build(u"x", error));
    EXPECT_FALSE(error) << "an error of an earlier source goes away";
}

TEST(MTMathListBuilder, writesSource) {
    const Case cases[] = {
        {u"x_i^2+1", u"x^{2}_{i}+1"},
        {u"a-b:c", u"a-b:c"},
        {u"^2", u"{}^{2}"},
        {u"\\alpha b", u"\\alpha b"},
        {u"\\frac ab", u"\\frac{a}{b}"},
        {u"\\binom nk", u"{n \\choose k}"},
        {u"a\\atop b", u"{a \\atop b}"},
        {u"\\sqrt[3]x\\sqrt y", u"\\sqrt[3]{x}\\sqrt{y}"},
        {u"\\left( x\\right.", u"\\left( x\\right. "},
        {u"\\left\\{ x\\right\\|", u"\\left\\{ x\\right\\| "},
        {u"\\left\\langle x\\right\\rfloor", u"\\left< x\\right\\rfloor "},
        {u"\\overline x\\underline y\\widehat z", u"\\overline{x}\\underline{y}\\hat{z}"},
        {u"\\sum\\nolimits_i\\sin\\limits x\\lim y", u"\\sum \\nolimits _{i}\\sin \\limits x\\lim y"},
        {u"a\\,b\\quad c", u"a\\, b\\quad c"},
        {u"\\textstyle x", u"\\textstyle x"},
        {u"\\mathbf{ab}c\\mathrm d\\mathcal e", u"\\mathbf{ab}c\\mathrm{d}\\mathcal{e}"},
        {u"\\bm x^{\\frak y}", u"\\bm{x^{\\mathfrak{y}}}"},
        {u"\\color{red}x\\textcolor{#0f0}y\\colorbox{blue}z",
         u"\\color{red}{x}\\textcolor{#0f0}{y}\\colorbox{blue}{z}"},
        {u"a&b\\\\c", u"a&b\\\\ c"},
        {u"\\begin{pmatrix}a&b\\\\c&d\\end{pmatrix}", u"\\left( \\begin{matrix}a&b\\\\ c&d\\end{matrix}\\right) "},
        {u"\\begin{split}a&=b\\end{split}", u"\\begin{split}a&=b\\end{split}"},
        {u"\\begin{cases}a&b\\end{cases}", u"\\left\\{ \\begin{cases}\\textstyle a&\\textstyle b\\end{cases}\\right. "},
    };
    for (const auto& [source, text] : cases)
        EXPECT_EQ(MTMathListBuilder::mathListToString(MTMathListBuilder::build(source)).toStdString(),
                  text.toUtf8().toStdString());
    EXPECT_EQ(MTMathListBuilder::mathListToString(nullptr), QString());
}
