#include "MarkdownParser.h"

#include "InlineMarkdown.h"
#include "InlineMarkdownParser.h"
#include "MathSegmentSplitter.h"

#include <QColor>
#include <QStringList>

#include <gtest/gtest.h>

using Block = MarkdownBlock;

namespace {

struct Dump {
    QString operator()(const Block::Heading& heading) const {
        return QStringLiteral("h%1<%2>").arg(heading.level).arg(heading.text);
    }
    QString operator()(const Block::Paragraph& paragraph) const { return QStringLiteral("p<%1>").arg(paragraph.text); }
    QString operator()(const Block::BulletList& list) const {
        return QStringLiteral("ul<%1>").arg(list.items.join(u'^'));
    }
    QString operator()(const Block::NumberedList& list) const {
        return QStringLiteral("ol<%1>").arg(list.items.join(u'^'));
    }
    QString operator()(const Block::CodeBlock& code) const { return QStringLiteral("code<%1>").arg(code.text); }
    QString operator()(const Block::Blockquote& quote) const { return QStringLiteral("quote<%1>").arg(quote.text); }
    QString operator()(const Block::Table& table) const {
        QStringList rows{table.header.join(u'^')};
        for (const QStringList& row : table.rows)
            rows.append(row.join(u'^'));
        return QStringLiteral("table<%1>").arg(rows.join(u'/'));
    }
};

std::string dumpBlocks(const QString& source) {
    QStringList dump;
    for (const Block& block : MarkdownParser::parse(source))
        dump.append(std::visit(Dump{}, block.content));
    return dump.join(u' ').replace(u'\n', u'~').toStdString();
}

std::string dumpSegments(const QString& source) {
    QString dump;
    for (const MathSegment& segment : MathSegmentSplitter::split(source)) {
        if (const auto* math = std::get_if<MathSegment::Math>(&segment.content))
            dump += (math->display ? QStringLiteral("D<") : QStringLiteral("I<")) + math->latex + u'>';
        else
            dump += QStringLiteral("T<") + std::get<MathSegment::Text>(segment.content).text + u'>';
    }
    return dump.toStdString();
}

std::string dumpRuns(const std::vector<InlineRun>& runs) {
    QString dump;
    for (const InlineRun& run : runs) {
        QString marks;
        for (const auto& [trait, letter] : {std::pair(InlineRun::Trait::strong, u'b'),
                                            {InlineRun::Trait::emphasis, u'i'},
                                            {InlineRun::Trait::code, u'c'},
                                            {InlineRun::Trait::strikethrough, u's'}}) {
            if (run.traits.testFlag(trait))
                marks += letter;
        }
        const QString link = run.link.isEmpty() ? QString() : QStringLiteral("@") + run.link;
        dump += run.image.isNull() ? marks + u'<' + run.text + u'>' + link : QStringLiteral("image<") + run.text + u'>';
    }
    return dump.replace(u'\n', u'~').toStdString();
}

struct Case {
    QStringView source;
    const char* dump;
};

} // namespace

TEST(MarkdownParserTest, blocks) {
    const Case cases[] = {
        {u"", ""},
        {u"\n \t\n\u00A0\u3000\n", ""},
        // Headings.
        {u"# a", "h1<a>"},
        {u"  ###### x  ", "h6<x>"},
        {u"####### x", "p<####### x>"},
        {u"#x", "p<#x>"},
        {u"#\tx", "p<#\tx>"},
        {u"# ", "p<#>"},
        {u"# a #", "h1<a #>"},
        {u"a\n## b\nc", "p<a> h2<b> p<c>"},
        {u"#\u0301 x", "p<#\u0301 x>"},
        // Code.
        {u"```cpp x\n  a\n\n```js\nb", "code<  a~> p<b>"},
        {u"```\n# a\n- b\n\n", "code<# a~- b~~>"},
        {u"```", "code<>"},
        {u"a\n ``` \n\tx\n  ```", "p<a> code<\tx>"},
        {u"``\u0060\u0301\nx", "p<```\u0301~x>"},
        // Tables.
        {u"a | b\n---", "table<a^b>"},
        {u"a | b", "p<a | b>"},
        {u"- a | b\n|---|", "table<- a^b>"},
        {u"| a | b |\n|:--|--:|\n| 1 |\n\t|2||3|\n# x | y\nend", "table<a^b/1/2^^3/# x^y> p<end>"},
        {u"x\na|b\n-\n\nc", "p<x> table<a^b> p<c>"},
        {u"a|b\n|-\t-|", "p<a|b~|-\t-|>"},
        {u"a|b\n|:|", "p<a|b~|:|>"},
        {u"a|b\n|--x|", "p<a|b~|--x|>"},
        {u"|\n-\n\\|`|`", "table</\\^`^`>"},
        // Quotes.
        {u"> a\n>\n>  b\n> \n>c", "quote<a~~ b~> p<>c>"},
        {u">", "quote<>"},
        {u"a\n> > b", "p<a> quote<> b>"},
        // Lists.
        {u"- a\n* b\n    -   c\n+ d", "ul<a^b^  c> p<+ d>"},
        {u"-\n*", "p<-~*>"},
        {u"1. a\n\n2. b", "ol<a> ol<b>"},
        {u"5. a\n-1. b\n+7.  c\n1.5 m\n1.", "ol<a^b^ c> p<1.5 m~1.>"},
        {u"9223372036854775807. a\n9223372036854775808. b", "ol<a> p<9223372036854775808. b>"},
        {u"1a. x\n .x\na. y\n1) z\n\u0661. w", "p<1a. x~.x~a. y~1) z~\u0661. w>"},
        {u"1. \u0301x", "p<1. \u0301x>"},
        {u"**a** b\n- c\ntext", "p<**a** b> ul<c> p<text>"},
        // Paragraphs.
        {u" a  \n\tb\n\nc", "p<a~b> p<c>"},
        {u"a\r\n\r\n# b\r", "p<a\r~\r> h1<b\r>"},
        {u"---\n===", "p<---~===>"},
        {u"$$\n- x\n$$", "p<$$> ul<x> p<$$>"},
    };
    for (const Case& test : cases)
        EXPECT_EQ(dumpBlocks(test.source.toString()), test.dump) << test.source.toString().toStdString();
}

TEST(MarkdownParserTest, cutAnywhereItIsStillRead) {
    const QString reply =
        QStringLiteral("# a\n\n|x|y|\n|-|-|\n|1|2|\n\n> q\n\n1. n\n- b\n```c\ncode\n```\n$$x$$ **b** [l](u");
    for (qsizetype length = 1; length <= reply.size(); ++length)
        EXPECT_FALSE(MarkdownParser::parse(reply.left(length)).empty()) << length;
}

TEST(MathSegmentSplitterTest, segments) {
    const Case cases[] = {
        {u"", ""},
        {u"$", "T<$>"},
        {u"$ x", "T<$ x>"},
        {u"$x$", "I<x>"},
        {u"\\(x\\)\\[ y\n\\]", "I<x>D< y\n>"},
        {u"a$$b$$c", "T<a>D<b>T<c>"},
        {u"$5 and $10", "I<5 and >T<10>"},
        {u"\\$x\\$", "T<\\>I<x\\>"},
        {u"$$ x", "I<>T< x>"},
        {u"$$$$", "D<>"},
        {u"$$$", "I<>T<$>"},
        {u"$a\nb$$c$", "I<a\nb>I<c>"},
        {u"\\(a\\[b\\]", "T<\\(a>D<b>"},
        {u"\\(a \\(b\\) c\\)", "I<a \\(b>T< c\\)>"},
        {u"\\begin{x}\\", "T<\\begin{x}\\>"},
        {u"$\u0301x$y$", "T<$\u0301x>I<y>"},
        {u"\\(\u0301x\\)", "T<\\(\u0301x\\)>"},
    };
    for (const Case& test : cases)
        EXPECT_EQ(dumpSegments(test.source.toString()), test.dump) << test.source.toString().toStdString();
    EXPECT_EQ(MathSegmentSplitter::soleDisplayEquation(u"  $$b$$\n"), QStringLiteral("b"));
    for (const QStringView other : std::initializer_list<QStringView>{u"a$$b$$c", u"$b$", u"$$a$$ $$b$$", u"", u"b"})
        EXPECT_EQ(MathSegmentSplitter::soleDisplayEquation(other), std::nullopt);
}

TEST(InlineMarkdownTest, runs) {
    const Case cases[] = {
        {u"", ""},
        {u"  a\t b  \n   c ", "<  a\t b  ~   c >"},
        {u"**b** *i* _j_ ***bi*** `c` ~~s~~", "b<b>< >i<i>< >i<j>< >bi<bi>< >c<c>< >s<s>"},
        {u"**a\nb**", "b<a~b>"},
        {u"2 * 3 * 4 snake_case_name **open", "<2 * 3 * 4 snake_case_name **open>"},
        {u"# a", "<# a>"},
        {u"- a\n1. b\n> c\n---\n```\n    d", "<- a~1. b~> c~---~```~    d>"},
        {u"\\*a\\* &amp; &#x2a;&lt;b&gt; &unknown;", "<*a* & *<b> &unknown;>"},
        {u"<b>x</b> <script>", "<<b>x</b> <script>>"},
        {u"[l **m**](http://a.b/c?x=1&amp;y \"t\")", "<l >@http://a.b/c?x=1&yb<m>@http://a.b/c?x=1&y"},
        {u"[a]: http://b\n[a]", "<[a]: http://b~[a]>"},
        {u"![pic](file:///etc/passwd) ![](x.png)", "<pic>@file:///etc/passwd< ><x.png>@x.png"},
        {u"https://a.b/c\nhttps://c.d", "<https://a.b/c>@https://a.b/c<~><https://c.d>@https://c.d"},
        {u"see https://a.b/c and <https://d.e>", "<see ><https://a.b/c>@https://a.b/c< and ><https://d.e>@https://d.e"},
        {u"a\u0000\r\f\u000Bb", "<a>"}, // a literal ends at NUL
        // A formula parts the text, and a mark doesn't reach over it.
        {u"**a $x$ b**", "<**a ><x>< b**>"},
        {u"$a*b*c$ $$ y $$", "<a*b*c>< >< y >"},
    };
    for (const Case& test : cases)
        EXPECT_EQ(dumpRuns(InlineMarkdown(test.source.toString(), Qt::black).text()), test.dump)
            << test.source.toString().toStdString();
    const QString withControls = QStringLiteral("a") + QChar(0) + QStringLiteral("\r\f\vb*c*");
    EXPECT_EQ(dumpRuns(InlineMarkdown(withControls, Qt::black).text()), "<ab>i<c>");
}

TEST(InlineMarkdownTest, aFormulaShowsItsImageOrItsSource) {
    QStringList asked;
    const MathImageSource images = [&asked](const QString& latex, double fontSize, const QColor& color) {
        asked.append(QStringLiteral("%1 %2 %3").arg(latex).arg(fontSize).arg(color.name()));
        return latex == QStringLiteral("bad") ? QImage() : QImage(4, 4, QImage::Format_ARGB32);
    };
    EXPECT_EQ(dumpRuns(InlineMarkdown(u"a $x$ $$y$$ \\(bad\\)", Qt::red, images).text()),
              "<a >image<$x$>< >image<$$y$$>< ><bad>");
    EXPECT_EQ(asked, QStringList({QStringLiteral("x 15 #ff0000"), QStringLiteral("y 17 #ff0000"),
                                  QStringLiteral("bad 15 #ff0000")}));
}

TEST(InlineMarkdownTest, pagesAreLinksOutsideOfCodeFormulasAndLinks) {
    const Case cases[] = {
        {u"see page 2, **pages 3** and 4", "<see ><page 2>@page:2<, >b<pages 3>@page:3< and ><4>@page:4"},
        {u"pages **2** and *3*!", "<pages >@page:2b<2>@page:2< and >i<3>@page:3<!>"},
        {u"`page 2` [page 2](http://a.b) page `2` [page](http://a.b) 2",
         "c<page 2>< ><page 2>@http://a.b< page >c<2>< ><page>@http://a.b< 2>"},
        {u"$page 2$ page $2$ page 2", "<page 2>< page ><2>< ><page 2>@page:2"},
    };
    for (const Case& test : cases)
        EXPECT_EQ(dumpRuns(InlineMarkdown(test.source.toString(), Qt::black, {}, 4).text()), test.dump)
            << test.source.toString().toStdString();
}

TEST(InlineMarkdownTest, whatIsTooLongToReadIsPlain) {
    const QString text = QStringLiteral("**a** ").repeated(InlineMarkdownParser::longestText / 6 + 1);
    EXPECT_EQ(InlineMarkdownParser::parse(text), std::nullopt);
    const InlineMarkdown markdown(text, Qt::black);
    ASSERT_EQ(markdown.text().size(), 1U);
    EXPECT_EQ(markdown.text().front().text, text);
}
