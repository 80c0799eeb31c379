#pragma once

#include "GraphemeClusters.h"
#include "MTFontStyle.h"
#include "MTParseError.h"

#include <QString>

#include <memory>
#include <optional>
#include <vector>

class MTColoredAtom;
class MTInner;
class MTInnerListAtom;
class MTMathAtom;
class MTMathList;

/// The environment that is being read.
struct MTEnvProperties {
    std::optional<QStringView> envName; ///< none for a table without \begin
    bool ended = false;
    std::size_t numRows = 0; ///< rows that are complete
};

/// Reads a formula in LaTeX source, by recursive descent and in one pass. It never throws: what is wrong with a source
/// is an error, and there is no list then. Sources are not trusted: one that is nested too deeply for a small stack, or
/// makes more atoms and lists than any real formula, is the error `internalError`. The time is linear in the length of
/// the source. Usable on any thread.
class MTMathListBuilder {
public:
    /// The deepest nesting of groups, arguments, scripts and environments. Every walk over a formula recurses about as
    /// deeply as it was read, so this bounds the stack that all of them need.
    static constexpr int maximumNesting = 200;

    /// The most atoms and lists that one source may make.
    static constexpr int maximumParts = 100'000;

    /// The formula, or null.
    [[nodiscard]] static std::shared_ptr<MTMathList> build(QStringView source);
    /// Sets `error` on failure, and clears it on success.
    [[nodiscard]] static std::shared_ptr<MTMathList> build(QStringView source, std::optional<MTParseError>& error);

    /// The list as LaTeX source; empty for null.
    [[nodiscard]] static QString mathListToString(const std::shared_ptr<MTMathList>& list);
    /// What stands behind \left or \right for a boundary; empty for a character that is no delimiter.
    [[nodiscard]] static QString delimToString(const MTMathAtom& delim);

private:
    using ListPointer = std::shared_ptr<MTMathList>;
    using AtomPointer = std::shared_ptr<MTMathAtom>;

    /// One level of nesting, for as long as it lives.
    class NestingLevel {
    public:
        explicit NestingLevel(MTMathListBuilder& builder) : m_builder(builder) {
            if (++m_builder.m_nesting > maximumNesting)
                m_builder.setInternalError();
        }
        ~NestingLevel() { --m_builder.m_nesting; }
        Q_DISABLE_COPY_MOVE(NestingLevel)

        /// False when the error is set because it is one too many.
        [[nodiscard]] bool isAllowed() const { return m_builder.m_nesting <= maximumNesting; }

    private:
        MTMathListBuilder& m_builder;
    };

    enum class Script { super, sub };

    explicit MTMathListBuilder(QStringView source) : m_reader(source) {}

    /// Only the first error counts.
    void setError(MTParseErrors code, const QString& message);
    void setInternalError();
    /// Counts an atom or a list of the formula. False, with the error set, when there are too many.
    bool countPart();

    void skipSpaces();
    bool expectCharacter(char16_t character);
    QStringView readCommand();
    /// A run of letters that have a case; may be empty.
    QStringView readString();
    QStringView readColorString();
    QStringView readWhile(bool (*isWanted)(QStringView character));
    /// What `readContent` finds between braces; none, with the error set, when a brace is missing.
    std::optional<QStringView> readBraced(QStringView (MTMathListBuilder::*readContent)());
    std::optional<QStringView> readEnvironment();
    std::optional<QStringView> readColor();
    /// The name of a delimiter in MTMathAtomFactory; none at the end.
    std::optional<QStringView> readDelimiter();
    /// The boundary behind \left or \right, as `side` says; null with the error set.
    AtomPointer getBoundaryAtom(QStringView side);

    /// Reads up to the end of what has begun: to `stopChar` when it is not 0, or one atom or group with `oneCharOnly`,
    /// or to a command that ends a group. Null with the error set.
    ListPointer buildInternal(bool oneCharOnly, char16_t stopChar = 0);
    /// The argument of a command or script.
    ListPointer buildArgument() { return buildInternal(true); }
    void buildScript(Script script, MTMathList& list, MTMathAtom*& prevAtom);
    /// Adds the atoms of a group that was read to the `list` around it.
    static void appendGroup(const ListPointer& group, MTMathList& list, MTMathAtom*& prevAtom);
    /// False when the character has no atom.
    bool buildCharacter(QStringView character, MTMathList& list, MTMathAtom*& prevAtom);
    ListPointer buildStyledArgument(MTFontStyle style, bool isText);
    /// What a backslash begins, added to `list`. Gives the list to return when that is finished with it, and null when
    /// there is more to read, or with the error set.
    ListPointer buildCommand(const ListPointer& list, MTMathAtom*& prevAtom, bool oneCharOnly, char16_t stopChar);
    /// False, with the error set, when there are too many atoms.
    bool addAtom(AtomPointer atom, MTMathList& list, MTMathAtom*& prevAtom);

    /// The finished list when `command` ends it; null otherwise, with the error set or not.
    ListPointer stopCommand(QStringView command, const ListPointer& list, char16_t stopChar);
    ListPointer buildFractionOfGroup(QStringView command, const ListPointer& numerator, char16_t stopChar);
    ListPointer endEnvironment(const ListPointer& list);
    /// Whether `command` is about the atom in front of it.
    bool applyModifier(QStringView command, MTMathAtom* atom);
    /// Null with the error set.
    AtomPointer atomForCommand(QStringView command);
    AtomPointer buildFraction();
    AtomPointer buildBinomial();
    AtomPointer buildRadical();
    AtomPointer buildLeftRight();
    AtomPointer buildEnvironment();
    AtomPointer buildColored(const std::shared_ptr<MTColoredAtom>& atom);
    AtomPointer buildDecorated(const std::shared_ptr<MTInnerListAtom>& atom);

    /// Reads the rows of a table. `firstList` is the cell that was read before the table was seen to be one, with
    /// `isRow` as a row of its own. Null with the error set.
    AtomPointer buildTable(std::optional<QStringView> environment, const ListPointer& firstList, bool isRow);
    /// A table without environment as the only atom of a list.
    ListPointer buildPlainTable(const ListPointer& firstList, bool isRow);

    GraphemeClusters::Reader m_reader;
    MTInner* m_currentInnerAtom = nullptr; ///< the \left group being read
    std::optional<MTEnvProperties> m_currentEnv;
    MTFontStyle m_currentFontStyle = MTFontStyle::defaultStyle;
    bool m_spacesAllowed = false;
    std::optional<MTParseError> m_error;
    int m_nesting = 0;
    int m_parts = 0;
};
