#pragma once

#include "MTFontStyle.h"
#include "MTLineStyle.h"
#include "MTMathAtomType.h"

#include <QString>

#include <optional>
#include <span>
#include <string_view>

/// The fixed vocabulary of formulas as constant tables, and the ways to look things up in them. Names are without their
/// backslash, letter case counts, and a search that finds nothing gives null. Usable on any thread, without locks.
/// Where several names stand for one value the way back gives the shortest, of equally long ones the alphabetically
/// first.
namespace MTCommandTables {

/// A command for an atom that is all nucleus.
struct Symbol {
    std::u16string_view name;
    std::u16string_view nucleus;
    MTMathAtomType type;
    bool limits = false; ///< for large operators: whether scripts go above and below
};

/// Another name of a symbol.
struct Alias {
    std::u16string_view name;
    std::u16string_view symbol;
};

/// What may stand behind \left and \right. The character is empty for the delimiter that is not drawn.
struct Delimiter {
    std::u16string_view name;
    std::u16string_view character;
};

struct Accent {
    std::u16string_view name;
    std::u16string_view character; ///< combining
};

struct FontStyleName {
    std::u16string_view name;
    MTFontStyle style;
};

struct Space {
    std::u16string_view name;
    int width; ///< in mu, eighteenths of an em
};

struct StyleName {
    std::u16string_view name;
    MTLineStyle style;
};

/// A command that makes a fraction of all that stands before and behind it in its group. The delimiters are characters.
struct FractionCommand {
    std::u16string_view name;
    bool hasRule;
    std::u16string_view leftDelimiter;
    std::u16string_view rightDelimiter;
};

/// An environment for a table that may stand between delimiters, which are given by name.
struct MatrixEnvironment {
    std::u16string_view name;
    std::u16string_view leftDelimiter;
    std::u16string_view rightDelimiter;
};

[[nodiscard]] std::span<const Symbol> allSymbols();
[[nodiscard]] const Symbol* symbolNamed(QStringView name);
[[nodiscard]] const Symbol* symbolWithNucleus(QStringView nucleus);

[[nodiscard]] std::span<const Alias> allAliases();
[[nodiscard]] const Alias* aliasNamed(QStringView name);

[[nodiscard]] std::span<const Delimiter> allDelimiters();
[[nodiscard]] const Delimiter* delimiterNamed(QStringView name);
[[nodiscard]] const Delimiter* delimiterWithCharacter(QStringView character);

[[nodiscard]] std::span<const Accent> allAccents();
[[nodiscard]] const Accent* accentNamed(QStringView name);
[[nodiscard]] const Accent* accentWithCharacter(QStringView character);

[[nodiscard]] std::span<const FontStyleName> allFontStyleNames();
[[nodiscard]] const FontStyleName* fontStyleNamed(QStringView name);

[[nodiscard]] std::span<const Space> allSpaces();
[[nodiscard]] const Space* spaceNamed(QStringView name);
[[nodiscard]] const Space* spaceOfWidth(double width);

[[nodiscard]] std::span<const StyleName> allStyleNames();
[[nodiscard]] const StyleName* styleNamed(QStringView name);
[[nodiscard]] const StyleName& nameOfStyle(MTLineStyle style);

[[nodiscard]] std::span<const FractionCommand> allFractionCommands();
[[nodiscard]] const FractionCommand* fractionCommandNamed(QStringView name);
/// The command for a fraction without a rule between these characters.
[[nodiscard]] const FractionCommand* fractionCommandWithDelimiters(QStringView left, QStringView right);

[[nodiscard]] std::span<const MatrixEnvironment> allMatrixEnvironments();
[[nodiscard]] const MatrixEnvironment* matrixEnvironmentNamed(QStringView name);

/// The order of names on the way back from a value.
template <typename Row>
constexpr bool nameComesFirst(const Row& left, const Row& right) {
    return left.name.size() != right.name.size() ? left.name.size() < right.name.size() : left.name < right.name;
}

/// A text of a table as a string, without a copy.
[[nodiscard]] inline QString string(std::u16string_view text) {
    return QString::fromRawData(reinterpret_cast<const QChar*>(text.data()), static_cast<qsizetype>(text.size()));
}

} // namespace MTCommandTables
