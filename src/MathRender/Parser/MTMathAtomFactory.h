#pragma once

#include "MTFontStyle.h"
#include "MTParseError.h"

#include <QString>

#include <memory>
#include <optional>
#include <vector>

class MTAccent;
class MTFraction;
class MTMathAtom;
class MTMathList;
class MTRadical;

/// Makes atoms from the characters and commands of formulas, and finds the command of an atom. Every atom it gives is a
/// new one. Names are without their backslash. Usable on any thread.
namespace MTMathAtomFactory {

/// The atom of one character, a character being a grapheme cluster. Null for what has a meaning in the syntax and for
/// all that a formula leaves out: blanks, control characters, and characters outside ASCII that are neither accented
/// Latin letters nor Cyrillic ones.
[[nodiscard]] std::shared_ptr<MTMathAtom> atomForCharacter(QStringView character);

/// The atom of a command, other names resolved. Null when there is no such symbol, space or style.
[[nodiscard]] std::shared_ptr<MTMathAtom> atomForLatexSymbol(QStringView name);

/// The command for the nucleus of `atom`, none for an empty or unknown one.
[[nodiscard]] std::optional<QString> latexSymbolName(const MTMathAtom& atom);

/// Adds a command for copies of `value` to what the whole program knows, in place of a symbol of the same name. What is
/// another name of a symbol from the start stays so.
void addLatexSymbol(const QString& name, const MTMathAtom& value);

/// Every name that `atomForLatexSymbol` knows from the start, other names left out.
[[nodiscard]] std::vector<QString> supportedLatexSymbolNames();

/// The accent with no list under it; null for an unknown name.
[[nodiscard]] std::shared_ptr<MTAccent> accentWithName(QStringView name);
[[nodiscard]] std::optional<QString> accentName(const MTMathAtom& accent);

/// An atom of type `boundary`; null for an unknown name.
[[nodiscard]] std::shared_ptr<MTMathAtom> boundaryForDelimiter(QStringView name);
[[nodiscard]] std::optional<QString> delimiterName(const MTMathAtom& boundary);

[[nodiscard]] std::optional<MTFontStyle> fontStyleWithName(QStringView name);
[[nodiscard]] QString fontNameForStyle(MTFontStyle style);

[[nodiscard]] std::shared_ptr<MTMathAtom> times();
[[nodiscard]] std::shared_ptr<MTMathAtom> divide();
/// An empty square to fill in, and the composite atoms with such squares in place of their lists.
[[nodiscard]] std::shared_ptr<MTMathAtom> placeholder();
[[nodiscard]] std::shared_ptr<MTFraction> placeholderFraction();
[[nodiscard]] std::shared_ptr<MTRadical> placeholderSquareRoot();
[[nodiscard]] std::shared_ptr<MTRadical> placeholderRadical(); ///< with a degree

[[nodiscard]] std::shared_ptr<MTFraction> fraction(std::shared_ptr<MTMathList> numerator,
                                                   std::shared_ptr<MTMathList> denominator);
/// The same of the characters of two texts; those without an atom are left out.
[[nodiscard]] std::shared_ptr<MTFraction> fraction(QStringView numerator, QStringView denominator);

/// The atoms of the characters of a text; characters without one are left out.
[[nodiscard]] std::vector<std::shared_ptr<MTMathAtom>> atomList(QStringView text);
[[nodiscard]] std::shared_ptr<MTMathList> mathListForCharacters(QStringView text);

/// The table of an environment, between delimiters where the environment has them, or a table without environment.
/// The lists of `rows` become its cells and may get an atom put in front. Null, with `error` set unless it was before,
/// for an unknown environment and a wrong number of columns.
[[nodiscard]] std::shared_ptr<MTMathAtom>
tableWithEnvironment(const std::optional<QString>& environment,
                     const std::vector<std::vector<std::shared_ptr<MTMathList>>>& rows,
                     std::optional<MTParseError>& error);

} // namespace MTMathAtomFactory
