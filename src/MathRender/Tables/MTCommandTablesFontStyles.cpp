#include "MTCommandTables.h"

#include "MTTextIndex.h"

#include <array>

namespace {

using MTCommandTables::FontStyleName;

constexpr std::array<FontStyleName, 22> fontStyles{{
    {u"mathnormal", MTFontStyle::defaultStyle},
    {u"mathrm", MTFontStyle::roman},
    {u"textrm", MTFontStyle::roman},
    {u"rm", MTFontStyle::roman},
    {u"text", MTFontStyle::roman},
    {u"mathbf", MTFontStyle::bold},
    {u"bf", MTFontStyle::bold},
    {u"textbf", MTFontStyle::bold},
    {u"mathcal", MTFontStyle::caligraphic},
    {u"cal", MTFontStyle::caligraphic},
    {u"mathtt", MTFontStyle::typewriter},
    {u"texttt", MTFontStyle::typewriter},
    {u"mathit", MTFontStyle::italic},
    {u"textit", MTFontStyle::italic},
    {u"mit", MTFontStyle::italic},
    {u"mathsf", MTFontStyle::sansSerif},
    {u"textsf", MTFontStyle::sansSerif},
    {u"mathfrak", MTFontStyle::fraktur},
    {u"frak", MTFontStyle::fraktur},
    {u"mathbb", MTFontStyle::blackboard},
    {u"mathbfit", MTFontStyle::boldItalic},
    {u"bm", MTFontStyle::boldItalic},
}};

constexpr MTTextIndex fontStylesByName(fontStyles, &FontStyleName::name);

} // namespace

namespace MTCommandTables {

std::span<const FontStyleName> allFontStyleNames() {
    return fontStyles;
}

const FontStyleName* fontStyleNamed(QStringView name) {
    return fontStylesByName.find(name);
}

} // namespace MTCommandTables
