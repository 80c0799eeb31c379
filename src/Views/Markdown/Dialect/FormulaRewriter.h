#pragma once

#include "DialectCommands.h"
#include "FormulaTokens.h"
#include "FormulaWriter.h"
#include "MTLineStyle.h"

#include <QString>
#include <QStringList>

#include <optional>
#include <vector>

/// Rewrites one formula, by recursive descent over its tokens. After a failure nothing is left to be read, so that all
/// that was begun comes to its end.
///
/// A group of the engine is flat: its atoms, and a style that it sets, go on in the list around it. A colour without a
/// name changes nothing and keeps its argument together, so it stands for the groups of TeX that matter.
class FormulaRewriter {
public:
    explicit FormulaRewriter(QStringView source) : m_tokens(source) {}

    /// None when the formula can't be shown as it was meant.
    [[nodiscard]] std::optional<QString> rewritten();

private:
    using Kind = FormulaToken::Kind;
    using Row = DialectCommands::Row;

    /// A list that is being written: a group, an argument, a cell.
    struct List {
        explicit List(MTLineStyle listStyle, bool isBehindStyle = false)
            : style(listStyle), writer(listStyle > MTLineStyle::text, isBehindStyle) {}

        MTLineStyle style;
        FormulaWriter writer;
        QString closers; ///< of what was opened up to the list's end
        QString tail;    ///< behind all of it
        bool setsStyle = false;

        [[nodiscard]] QString latex() const { return writer.latex() + closers + tail; }
    };

    /// The rows of a table.
    struct Rows {
        std::vector<QStringList> rows;
        List last{MTLineStyle::display}; ///< the list of the last cell
    };

    void fail();
    [[nodiscard]] static MTLineStyle scriptStyle(MTLineStyle style);
    [[nodiscard]] static MTLineStyle fractionStyle(MTLineStyle style);
    /// `latex` in a style of its own.
    [[nodiscard]] static QString kept(const QString& latex) { return QLatin1String("\\color{}{") + latex + u'}'; }
    [[nodiscard]] static QString inStyle(MTLineStyle style, const QString& latex);
    [[nodiscard]] static QString braced(const QString& latex) { return u'{' + latex + u'}'; }
    /// A piece that `kept` made.
    [[nodiscard]] static FormulaPiece keptPiece(const QString& latex, MTMathAtomType meant);

    // Lists (FormulaRewriter.cpp)
    /// Atoms up to the end of a list, which is left to be read.
    void readList(List& list);
    /// False, with nothing read, where a list ends.
    [[nodiscard]] bool isAtListEnd() const;
    /// One atom, and with `scripts` what stands at it.
    void readAtom(List& list, bool scripts);
    void readGroup(List& list, bool scripts);
    void readCharacter(List& list, bool scripts);
    void addSign(const FormulaPiece& piece, char32_t character, List& list, bool scripts);
    [[nodiscard]] std::optional<FormulaPiece> pieceOf(const FormulaToken& token);
    [[nodiscard]] std::optional<FormulaPiece> radicalSign(MTLineStyle style);
    /// From a parenthesis to the one that closes it.
    [[nodiscard]] QString parenthesized(MTLineStyle style);
    /// What stands up to a closing brace, which is read as well.
    [[nodiscard]] List readBraced(MTLineStyle style);
    /// The argument of a command without braces around it, a group or one atom.
    [[nodiscard]] QString argument(MTLineStyle style);
    /// The same with all that is known of it.
    [[nodiscard]] List argumentList(MTLineStyle style);
    /// The characters between braces as they stand.
    [[nodiscard]] QString rawArgument();
    /// The characters between brackets, if there are any.
    std::optional<QString> rawOption();
    /// The formula between brackets, if there is one.
    [[nodiscard]] std::optional<QString> option(MTLineStyle style);

    // Scripts (FormulaRewriterScripts.cpp)
    struct Scripts {
        QString super;
        QString sub;
        bool hasSuper = false;
        bool hasSub = false;
        bool isPrime = false; ///< of the superscript, all so far
    };
    [[nodiscard]] bool isAtScript();
    [[nodiscard]] Scripts readScripts(MTLineStyle style);
    void readScriptMark(Scripts& scripts, MTLineStyle style);
    void readPrimes(Scripts& scripts);
    void readScriptCharacters(QString& script, bool isSuper);
    [[nodiscard]] static QString latexOf(const Scripts& scripts);
    /// Adds the piece with what stands at it.
    void addScripted(FormulaPiece piece, List& list, bool scripts);

    // Commands (FormulaRewriterCommands.cpp)
    void readCommand(List& list, bool scripts);
    void readCommand(const Row& row, List& list, bool scripts);
    void readLayoutCommand(const Row& row, List& list, bool scripts);
    void readSymbol(QStringView name, List& list, bool scripts);
    void readStyle(const Row& row, List& list);
    [[nodiscard]] FormulaPiece readFraction(const Row& row, MTLineStyle style);
    [[nodiscard]] FormulaPiece readRadical(MTLineStyle style);
    [[nodiscard]] FormulaPiece readBig(const Row& row);
    [[nodiscard]] FormulaPiece readLeftRight(MTLineStyle style);
    [[nodiscard]] FormulaPiece readNamed(const Row& row, MTLineStyle style);
    [[nodiscard]] FormulaPiece readNegated();
    [[nodiscard]] FormulaPiece readDots();
    [[nodiscard]] FormulaPiece readFenced(const Row& row, MTLineStyle style);
    [[nodiscard]] QString readLength();
    [[nodiscard]] QString readPhantom();
    [[nodiscard]] QString delimiter();

    // Above and below (FormulaRewriterStacks.cpp)
    /// `base` on its line between rows above and rows below, which have the size of scripts.
    [[nodiscard]] static QString stack(const QString& base, const QStringList& above, const QStringList& below,
                                       MTLineStyle style);
    [[nodiscard]] static QStringList rowsOf(const QString& latex) {
        return latex.isEmpty() ? QStringList() : QStringList{latex};
    }
    /// The same with a sign in the middle.
    [[nodiscard]] std::optional<QString> stackOnSign(char32_t sign, const QString& above, const QString& below,
                                                     MTLineStyle style);
    /// The sign that is all of the argument to come, with braces around it or without; nothing is read.
    [[nodiscard]] std::optional<FormulaToken> loneSign();
    [[nodiscard]] FormulaPiece readSet(bool isAbove, MTLineStyle style);
    [[nodiscard]] FormulaPiece readOver(const Row& row, MTLineStyle style);
    [[nodiscard]] FormulaPiece readLineWithLabel(bool isAbove, MTLineStyle style);
    [[nodiscard]] FormulaPiece readArrow(const Row& row, MTLineStyle style);

    // Tables (FormulaRewriterEnvironments.cpp)
    /// Cells up to what ends a table, which is left to be read.
    /// `isBehindStyle`: the engine puts a style in front of each.
    [[nodiscard]] Rows readRows(MTLineStyle style, bool isBehindStyle);
    void readRowEnd();
    [[nodiscard]] bool readRules();
    /// A list that may turn out to be a table.
    [[nodiscard]] List readContents(MTLineStyle style);
    [[nodiscard]] FormulaPiece readEnvironment(List& list);
    [[nodiscard]] QString array(const Rows& table, const QString& columns);
    [[nodiscard]] FormulaPiece readLines(MTLineStyle style);
    [[nodiscard]] FormulaPiece readDisplayLines();

    // Words (FormulaRewriterText.cpp)
    [[nodiscard]] FormulaPiece readText(const Row& row, MTLineStyle style);
    /// Words up to a closing brace, which is read as well, for an upright alphabet.
    [[nodiscard]] QString readWords(MTLineStyle style);
    [[nodiscard]] QString readWordCommand(MTLineStyle style);
    [[nodiscard]] QString readFormulaInWords(MTLineStyle style);
    [[nodiscard]] QString readWordCharacter();

    // Colours (FormulaRewriterColors.cpp)
    /// The engine's form of a colour; empty for one that isn't known, which changes nothing.
    [[nodiscard]] QString readColor();
    [[nodiscard]] FormulaPiece readColored(const Row& row, MTLineStyle style);
    void readColorSwitch(List& list, bool scripts);

    FormulaTokens m_tokens;
    int m_depth = 0;
    bool m_hasFailed = false;
};
