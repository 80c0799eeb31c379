#include "MTMathAlphabets.h"

#include "GraphemeClusters.h"
#include "MTException.h"
#include "MTMathAtom.h"
#include "MTNucleus.h"

#include <array>
#include <optional>
#include <span>
#include <string_view>
#include <utility>

namespace {

/// Where the forms of an alphabet begin in Unicode; 0 where it has none.
struct Alphabet {
    char32_t upper = 0;
    char32_t lower = 0;
    char32_t digits = 0;
    char32_t capitalGreek = 0;
    char32_t lowerGreek = 0;
    char32_t greekSymbols = 0;
    /// Letters whose form was in Unicode before the alphabet: their places in it are holes.
    std::span<const std::pair<char32_t, char32_t>> exceptions = {};
};

constexpr std::array<std::pair<char32_t, char32_t>, 1> italicExceptions{{{U'h', 0x210E}}};
constexpr std::array<std::pair<char32_t, char32_t>, 11> caligraphicExceptions{{
    {U'B', 0x212C},
    {U'E', 0x2130},
    {U'F', 0x2131},
    {U'H', 0x210B},
    {U'I', 0x2110},
    {U'L', 0x2112},
    {U'M', 0x2133},
    {U'R', 0x211B},
    {U'e', 0x212F},
    {U'g', 0x210A},
    {U'o', 0x2134},
}};
constexpr std::array<std::pair<char32_t, char32_t>, 5> frakturExceptions{{
    {U'C', 0x212D},
    {U'H', 0x210C},
    {U'I', 0x2111},
    {U'R', 0x211C},
    {U'Z', 0x2128},
}};
constexpr std::array<std::pair<char32_t, char32_t>, 7> blackboardExceptions{{
    {U'C', 0x2102},
    {U'H', 0x210D},
    {U'N', 0x2115},
    {U'P', 0x2119},
    {U'Q', 0x211A},
    {U'R', 0x211D},
    {U'Z', 0x2124},
}};

constexpr Alphabet italic{0x1D434, 0x1D44E, 0, 0x1D6E2, 0x1D6FC, 0x1D716, italicExceptions};
constexpr Alphabet bold{0x1D400, 0x1D41A, 0x1D7CE, 0x1D6A8, 0x1D6C2, 0x1D6DC};
constexpr Alphabet boldItalic{0x1D468, 0x1D482, 0x1D7CE, 0x1D71C, 0x1D736, 0x1D750};
constexpr Alphabet caligraphic{.upper = 0x1D49C, .exceptions = caligraphicExceptions};
constexpr Alphabet typewriter{0x1D670, 0x1D68A, 0x1D7F6};
constexpr Alphabet sansSerif{0x1D5A0, 0x1D5BA, 0x1D7E2};
constexpr Alphabet fraktur{.upper = 0x1D504, .lower = 0x1D51E, .exceptions = frakturExceptions};
constexpr Alphabet blackboard{
    .upper = 0x1D538, .lower = 0x1D552, .digits = 0x1D7D8, .exceptions = blackboardExceptions};

constexpr std::u32string_view greekSymbols = U"\u03F5\u03D1\u03F0\u03D5\u03F1\u03D6";

/// None when the alphabet has no form of the character.
std::optional<char32_t> styled(char32_t character, const Alphabet& alphabet) {
    for (const auto& [letter, form] : alphabet.exceptions) {
        if (letter == character)
            return form;
    }
    const auto inRange = [&](char32_t first, char32_t last, char32_t forms) -> std::optional<char32_t> {
        if (forms == 0 || character < first || character > last)
            return std::nullopt;
        return forms + (character - first);
    };
    if (const auto form = inRange(U'A', U'Z', alphabet.upper))
        return form;
    if (const auto form = inRange(U'a', U'z', alphabet.lower))
        return form;
    if (const auto form = inRange(U'0', U'9', alphabet.digits))
        return form;
    if (const auto form = inRange(0x0391, 0x03A9, alphabet.capitalGreek))
        return form;
    if (const auto form = inRange(0x03B1, 0x03C9, alphabet.lowerGreek))
        return form;
    if (const auto order = greekSymbols.find(character); order != std::u32string_view::npos && alphabet.greekSymbols)
        return alphabet.greekSymbols + static_cast<char32_t>(order);
    return std::nullopt;
}

using Styling = char32_t (*)(char32_t);

char32_t unchanged(char32_t character) {
    return character;
}

Styling stylingOf(MTFontStyle style) {
    switch (style) {
    case MTFontStyle::defaultStyle:
        return &MTMathAlphabets::getDefaultStyle;
    case MTFontStyle::roman:
        break;
    case MTFontStyle::bold:
        return &MTMathAlphabets::getBold;
    case MTFontStyle::caligraphic:
        return &MTMathAlphabets::getCaligraphic;
    case MTFontStyle::typewriter:
        return &MTMathAlphabets::getTypewriter;
    case MTFontStyle::italic:
        return &MTMathAlphabets::getItalicized;
    case MTFontStyle::sansSerif:
        return &MTMathAlphabets::getSansSerif;
    case MTFontStyle::fraktur:
        return &MTMathAlphabets::getFraktur;
    case MTFontStyle::blackboard:
        return &MTMathAlphabets::getBlackboard;
    case MTFontStyle::boldItalic:
        return &MTMathAlphabets::getBoldItalic;
    }
    return &unchanged;
}

/// A character as one number: of several scalars, their sum. That is no character of any alphabet then.
char32_t valueOf(QStringView character) {
    char32_t value = 0;
    for (qsizetype i = 0; i < character.size();)
        value += MTNucleus::scalarAt(character, i);
    return value;
}

void appendScalar(QString& text, char32_t scalar) {
    if (QChar::requiresSurrogates(scalar)) {
        text += QChar(QChar::highSurrogate(scalar));
        text += QChar(QChar::lowSurrogate(scalar));
    } else {
        text += QChar(static_cast<char16_t>(scalar));
    }
}

} // namespace

namespace MTMathAlphabets {

QString changeFont(const QString& string, MTFontStyle fontStyle) {
    if (fontStyle == MTFontStyle::roman)
        return string;
    const Styling styling = stylingOf(fontStyle);
    QString result;
    result.reserve(2 * string.size());
    for (GraphemeClusters::Reader reader(string); reader.hasCharacters();) {
        const QStringView character = reader.next();
        const char32_t value = valueOf(character);
        const char32_t form = styling(value);
        // What no style knows stays in full, with its marks.
        if (form == value)
            result += character;
        else
            appendScalar(result, form);
    }
    return result;
}

QString styledNucleus(const MTMathAtom& atom) {
    const bool isStyled = atom.type == MTMathAtomType::variable || atom.type == MTMathAtomType::number;
    return isStyled ? changeFont(atom.nucleus, atom.fontStyle) : atom.nucleus;
}

char32_t getItalicized(char32_t character) {
    return styled(character, italic).value_or(character);
}

char32_t getBold(char32_t character) {
    return styled(character, bold).value_or(character);
}

char32_t getBoldItalic(char32_t character) {
    return styled(character, boldItalic).value_or(character);
}

char32_t getCaligraphic(char32_t character) {
    const auto form = styled(character, caligraphic);
    return form ? *form : getDefaultStyle(character);
}

char32_t getTypewriter(char32_t character) {
    const auto form = styled(character, typewriter);
    return form ? *form : getDefaultStyle(character);
}

char32_t getSansSerif(char32_t character) {
    const auto form = styled(character, sansSerif);
    return form ? *form : getDefaultStyle(character);
}

char32_t getFraktur(char32_t character) {
    const auto form = styled(character, fraktur);
    return form ? *form : getDefaultStyle(character);
}

char32_t getBlackboard(char32_t character) {
    const auto form = styled(character, blackboard);
    return form ? *form : getDefaultStyle(character);
}

char32_t getDefaultStyle(char32_t character) {
    const bool staysUpright = (character >= U'0' && character <= U'9') || (character >= 0x0391 && character <= 0x03A9);
    if (staysUpright || character == U'.')
        return character;
    if (const auto form = styled(character, italic))
        return *form;
    const QString shown = QString::fromUcs4(&character, 1);
    throw MTException(QLatin1String("Unknown character ") + shown + QLatin1String(" for default style."));
}

} // namespace MTMathAlphabets
