#include "MTCommandTables.h"

#include "MTTextIndex.h"

#include <algorithm>
#include <array>

namespace {

using MTCommandTables::FractionCommand;
using MTCommandTables::MatrixEnvironment;
using MTCommandTables::Space;
using MTCommandTables::StyleName;

constexpr std::array<Space, 6> spaces{{
    {u",", 3},
    {u">", 4},
    {u";", 5},
    {u"!", -3},
    {u"quad", 18},
    {u"qquad", 36},
}};

constexpr std::array<StyleName, 4> styles{{
    {u"displaystyle", MTLineStyle::display},
    {u"textstyle", MTLineStyle::text},
    {u"scriptstyle", MTLineStyle::script},
    {u"scriptscriptstyle", MTLineStyle::scriptOfScript},
}};

constexpr std::array<FractionCommand, 5> fractionCommands{{
    {u"over", true, u"", u""},
    {u"atop", false, u"", u""},
    {u"choose", false, u"(", u")"},
    {u"brack", false, u"[", u"]"},
    {u"brace", false, u"{", u"}"},
}};

constexpr std::array<MatrixEnvironment, 6> matrixEnvironments{{
    {u"matrix", u"", u""},
    {u"pmatrix", u"(", u")"},
    {u"bmatrix", u"[", u"]"},
    {u"Bmatrix", u"{", u"}"},
    {u"vmatrix", u"vert", u"vert"},
    {u"Vmatrix", u"Vert", u"Vert"},
}};

constexpr MTTextIndex spacesByName(spaces, &Space::name);
constexpr MTTextIndex stylesByName(styles, &StyleName::name);
constexpr MTTextIndex fractionCommandsByName(fractionCommands, &FractionCommand::name);
constexpr MTTextIndex matrixEnvironmentsByName(matrixEnvironments, &MatrixEnvironment::name);

} // namespace

namespace MTCommandTables {

std::span<const Space> allSpaces() {
    return spaces;
}

const Space* spaceNamed(QStringView name) {
    return spacesByName.find(name);
}

const Space* spaceOfWidth(double width) {
    const auto* const space =
        std::find_if(spaces.begin(), spaces.end(), [&](const Space& s) { return s.width == width; });
    return space != spaces.end() ? space : nullptr;
}

std::span<const StyleName> allStyleNames() {
    return styles;
}

const StyleName* styleNamed(QStringView name) {
    return stylesByName.find(name);
}

const StyleName& nameOfStyle(MTLineStyle style) {
    return styles[static_cast<std::size_t>(style)];
}

std::span<const FractionCommand> allFractionCommands() {
    return fractionCommands;
}

const FractionCommand* fractionCommandNamed(QStringView name) {
    return fractionCommandsByName.find(name);
}

const FractionCommand* fractionCommandWithDelimiters(QStringView left, QStringView right) {
    const auto* const command =
        std::find_if(fractionCommands.begin(), fractionCommands.end(), [&](const FractionCommand& c) {
            return !c.hasRule && left == c.leftDelimiter && right == c.rightDelimiter;
        });
    return command != fractionCommands.end() ? command : nullptr;
}

std::span<const MatrixEnvironment> allMatrixEnvironments() {
    return matrixEnvironments;
}

const MatrixEnvironment* matrixEnvironmentNamed(QStringView name) {
    return matrixEnvironmentsByName.find(name);
}

} // namespace MTCommandTables
