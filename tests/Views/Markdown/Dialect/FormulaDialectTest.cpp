#include "FormulaDialect.h"
#include "MTFontManager.h"
#include "MTMathList.h"
#include "MTMathListBuilder.h"
#include "MTMathListDisplay.h"
#include "MTTypesetter.h"

#include <QFile>
#include <QStringList>

#include <cmath>

#include <gtest/gtest.h>

namespace {

/// In points, in display style at 20 points; none for a formula that is shown as its source.
std::optional<double> widthOf(const QString& latex) {
    const std::optional<QString> rewritten = FormulaDialect::rewritten(latex);
    const auto list = rewritten ? MTMathListBuilder::build(*rewritten) : nullptr;
    if (!list)
        return std::nullopt;
    const auto font = MTFontManager::fontManager().latinModernFont(20);
    return MTTypesetter::createLineForMathList(*list, font, MTLineStyle::display)->width();
}

QString nested(const char* opening, const char* core, const char* closing, int depth) {
    return QString::fromUtf8(opening).repeated(depth) + QString::fromUtf8(core) +
           QString::fromUtf8(closing).repeated(depth);
}

} // namespace

TEST(FormulaDialect, formulasOfRepliesAreAsWideAsLatexSetsThem) {
    QFile table(QStringLiteral(REPLIES));
    ASSERT_TRUE(table.open(QFile::ReadOnly));
    int shown = 0;
    for (const QString& row : QString::fromUtf8(table.readAll()).split(u'\n', Qt::SkipEmptyParts)) {
        SCOPED_TRACE(qPrintable(row));
        const QStringList cells = row.split(u'\t');
        ASSERT_GE(cells.size(), 2);
        const std::optional<double> width = widthOf(cells[0]);
        EXPECT_EQ(width.has_value(), cells[1] != u"source");
        if (!width)
            continue;
        ++shown;
        EXPECT_GT(*width, 0);
        const double latex = cells[1].toDouble();
        if (cells.size() == 2 && latex > 0) {
            EXPECT_NEAR(*width, latex, std::max(2.0, 0.08 * latex));
        }
    }
    EXPECT_GT(shown, 350);
}

TEST(FormulaDialect, whatModelsWriteIsWhatTheyMean) {
    const char* const same[][2] = {
        {"a≤b≠c×d·e÷f±g→h⇒i∈∞", "a\\leq b\\neq c\\times d\\cdot e\\div f\\pm g\\rightarrow h\\Rightarrow i\\in\\infty"},
        {"α−ω", "\\alpha-\\omega"},
        {"x²y₁⁻¹z₁₂³", "x^{2}y^{-1}_{1}z^{3}_{12}"},
        {"f'", "f^{\\prime}"},
        {"f''_i", "f^{\\prime\\prime}_i"},
        {"f'^2", "f^{\\prime 2}"},
        {"f_i'", "f_i^{\\prime}"},
        {"f″", "f''"},
        {"x^2'", "x^{2\\prime}"},
        {"x^2^3", "x^2{}^3"},
        {"x̄ + ê", "\\bar x + \\hat e"},
        {"a ≠ b", "a ≠ b"},
        {"√12 ∛x", "\\sqrt{12}\\sqrt[3]{x}"},
        {"\\sqrt [3] 2", "\\sqrt[3]{2}"},
        {"\\frac12", "\\frac{1}{2}"},
        {"5%", "5\\%"},
        {"{\\bf a b} c", "{\\mathbf{ab}} c"},
        {"\\operatorname{Var}(X)", "\\mathop{\\mathrm{Var}}\\nolimits(X)"},
        {"\\not\\in \\not=", "\\notin \\neq"},
        {"\\left\\lvert x\\right\\rVert", "\\left|x\\right\\|"},
        {"\\abs*{x}", "\\left|x\\right|"},
        {"\\begin{array}{@{}c | >{a}c@{}}1&2\\end{array}", "\\begin{array}{c|c}1&2\\end{array}"},
        {"\\begin{align*}a&=b\\\\[6pt]c&=d\\\\ \\end{align*}", "\\begin{aligned}a&=b\\\\c&=d\\end{aligned}"},
        {"a&=b\\\\c&=d", "\\begin{aligned}a&=b\\\\c&=d\\end{aligned}"},
        {"\\begin{cases}a\\\\b\\end{cases}", "\\begin{cases}a&\\\\b&\\end{cases}"},
        {"\\text{a_b \\& 5\\%}", "\\text{a\\_b \\& 5\\%}"},
        {"\\text{if $x$ is}", "\\mathrm{if~}x\\mathrm{~is}"},
        {"x\\label{a}\\nonumber\\notag", "x"},
        {"\\color{red}a b", "\\color{red}{ab}"},
        {"a\u200Bb\u2061c\uFEFF", "abc"},
    };
    for (const auto& [written, meant] : same) {
        const auto one = FormulaDialect::rewritten(QString::fromUtf8(written));
        const auto other = FormulaDialect::rewritten(QString::fromUtf8(meant));
        ASSERT_TRUE(one && other) << written;
        const auto withoutBlanks = [](QString latex) { return latex.remove(u' ').toStdString(); };
        EXPECT_NEAR(widthOf(*one).value_or(-1), widthOf(*other).value_or(-2), 1e-9)
            << withoutBlanks(*one) << " and " << withoutBlanks(*other);
    }
    // The engine's own "\varsigma" is a rho, and its groups let a style out.
    EXPECT_NE(widthOf(QStringLiteral("\\varsigma")), widthOf(QStringLiteral("\\rho")));
    EXPECT_EQ(widthOf(QStringLiteral("{\\scriptstyle a}b")).value_or(0),
              widthOf(QStringLiteral("{\\scriptstyle a}")).value_or(0) + widthOf(QStringLiteral("b")).value_or(0));
}

TEST(FormulaDialect, noSignDisappears) {
    const double formula = widthOf(QStringLiteral("xy")).value_or(0);
    const double words = widthOf(QStringLiteral("\\text{xy}")).value_or(0);
    int shown = 0;
    for (char32_t character = 0x21; character < 0x2C00; ++character) {
        const bool isSeen =
            QChar::isPrint(character) && !QChar::isMark(character) && QChar::category(character) != QChar::Other_Format;
        const bool isSyntax = character < 0x80 && QStringView(u"\\{}^_&$").contains(QChar(char16_t(character)));
        if (!isSeen || isSyntax)
            continue;
        const QString sign = QString::fromUcs4(&character, 1);
        SCOPED_TRACE(qPrintable(QStringLiteral("U+%1").arg(character, 4, 16)));
        if (const auto width = widthOf(u'x' + sign + u'y')) {
            EXPECT_GT(*width, formula + 0.5);
            ++shown;
        }
        if (const auto width = widthOf(QStringLiteral("\\text{x%1y}").arg(sign))) {
            EXPECT_GT(*width, words + 0.5);
        }
    }
    EXPECT_GT(shown, 1'000);
}

TEST(FormulaDialect, hostileSourcesAreShownAsTheyAre) {
    const char* const shapes[][2] = {{"{", "}"},
                                     {"\\left(", "\\right)"},
                                     {"\\sqrt{", "}"},
                                     {"\\sqrt[", "]x"},
                                     {"x^{", "}"},
                                     {"\\text{", "}"},
                                     {"\\text{$", "$}"},
                                     {"\\underset{a}{", "}"},
                                     {"\\overbrace{", "}^a"},
                                     {"\\begin{cases}", "\\end{cases}"},
                                     {"\\substack{", "}"},
                                     {"√(", ")"},
                                     {"\\hat", ""},
                                     {"\\color{red}", ""},
                                     {"\\mathbf", ""}};
    for (const auto& [opening, closing] : shapes) {
        for (const char* const core : {"x", ""}) {
            EXPECT_FALSE(widthOf(nested(opening, core, closing, 10'000))) << opening;
            EXPECT_FALSE(widthOf(nested(opening, core, "", 200))) << opening;
        }
    }
    for (const char* const unit : {"x", "^", "_", "'", "&", "\\\\", "\\middle|", "{", "}", "\\text{", "²", "x\u0301",
                                   "\u0301", "\\overset ab", "\\begin{array}{*{99}{c|}}", "\\hspace", "\\\\["}) {
        const QString text = QString::fromUtf8(unit);
        EXPECT_FALSE(widthOf(text.repeated(1'000'000 / text.size()))) << unit;
        (void)widthOf(text.repeated(FormulaDialect::longestFormula / text.size()));
        (void)widthOf(QLatin1String("\\left(") + text.repeated(20'000) + QLatin1String("\\right)"));
    }
}
