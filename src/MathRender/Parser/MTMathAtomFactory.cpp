#include "MTMathAtomFactory.h"

#include "GraphemeClusters.h"
#include "MTAccent.h"
#include "MTAccentedCharacters.h"
#include "MTCommandTables.h"
#include "MTFraction.h"
#include "MTMathList.h"
#include "MTRadical.h"

#include <array>

namespace {

/// Marks a character without an atom.
constexpr auto noAtom = static_cast<MTMathAtomType>(0);

/// What the visible characters of ASCII are in a formula, from U+0000 on.
constexpr std::array<MTMathAtomType, 128> makeAsciiTypes() {
    std::array<MTMathAtomType, 128> types{};
    types.fill(noAtom);
    const auto set = [&](std::u16string_view characters, MTMathAtomType type) {
        for (const char16_t character : characters)
            types[character] = type;
    };
    set(u"([", MTMathAtomType::open);
    set(u")]!?", MTMathAtomType::close);
    set(u",;", MTMathAtomType::punctuation);
    set(u"=<>:", MTMathAtomType::relation);
    set(u"-+*", MTMathAtomType::binaryOperator);
    set(u".0123456789", MTMathAtomType::number);
    set(u"abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ", MTMathAtomType::variable);
    set(u"\"/@`|", MTMathAtomType::ordinary);
    return types;
}

constexpr std::array<MTMathAtomType, 128> asciiTypes = makeAsciiTypes();

/// Each character of ASCII as a text of its own.
constexpr std::array<std::array<char16_t, 2>, 128> makeAsciiTexts() {
    std::array<std::array<char16_t, 2>, 128> texts{};
    for (std::size_t i = 0; i < texts.size(); ++i)
        texts[i] = {static_cast<char16_t>(i), u'\0'};
    return texts;
}

constexpr std::array<std::array<char16_t, 2>, 128> asciiTexts = makeAsciiTexts();

/// The shortest spelling of a letter with marks. Composing takes quadratic time, so piles of marks are left alone.
QString composed(QStringView character) {
    constexpr qsizetype mostUnits = 4;
    const QString text = character.toString();
    return text.size() > 1 && text.size() <= mostUnits ? text.normalized(QString::NormalizationForm_C) : text;
}

std::shared_ptr<MTMathAtom> atomFromAccentedCharacter(const MTAccentedCharacter& row) {
    std::shared_ptr<MTAccent> accent = MTMathAtomFactory::accentWithName(row.accentName);
    std::shared_ptr<MTMathAtom> base = MTMathAtomFactory::atomForCharacter(row.baseLetter);
    // Letters such as "æ" are no characters of formulas by themselves.
    if (!base)
        base = std::make_shared<MTMathAtom>(MTMathAtomType::ordinary, row.baseLetter);
    accent->innerList = std::make_shared<MTMathList>(std::move(base));
    return accent;
}

} // namespace

namespace MTMathAtomFactory {

std::shared_ptr<MTMathAtom> atomForCharacter(QStringView character) {
    if (character.isEmpty())
        return nullptr;
    const char16_t unit = character.front().unicode();
    if (character.size() > 1 || unit >= asciiTypes.size()) {
        if (QString cyrillic = composed(character); cyrillic.front() >= u'\u0410' && cyrillic.front() <= u'\u044F')
            return std::make_shared<MTMathAtom>(MTMathAtomType::ordinary, std::move(cyrillic));
        const MTAccentedCharacter* const accented = accentedCharacter(character);
        return accented ? atomFromAccentedCharacter(*accented) : nullptr;
    }
    const MTMathAtomType type = asciiTypes[unit];
    if (type == noAtom)
        return nullptr;
    std::u16string_view nucleus(asciiTexts[unit].data(), 1);
    if (unit == u':')
        nucleus = u"\u2236"; // ratio
    else if (unit == u'-')
        nucleus = u"\u2212"; // minus
    return std::make_shared<MTMathAtom>(type, MTCommandTables::string(nucleus));
}

std::shared_ptr<MTAccent> accentWithName(QStringView name) {
    const auto* const row = MTCommandTables::accentNamed(name);
    return row ? std::make_shared<MTAccent>(MTCommandTables::string(row->character)) : nullptr;
}

std::optional<QString> accentName(const MTMathAtom& accent) {
    const auto* const row = MTCommandTables::accentWithCharacter(accent.nucleus);
    return row ? std::optional(MTCommandTables::string(row->name)) : std::nullopt;
}

std::shared_ptr<MTMathAtom> boundaryForDelimiter(QStringView name) {
    const auto* const row = MTCommandTables::delimiterNamed(name);
    if (!row)
        return nullptr;
    return std::make_shared<MTMathAtom>(MTMathAtomType::boundary, MTCommandTables::string(row->character));
}

std::optional<QString> delimiterName(const MTMathAtom& boundary) {
    if (boundary.type != MTMathAtomType::boundary)
        return std::nullopt;
    const auto* const row = MTCommandTables::delimiterWithCharacter(boundary.nucleus);
    return row ? std::optional(MTCommandTables::string(row->name)) : std::nullopt;
}

std::optional<MTFontStyle> fontStyleWithName(QStringView name) {
    const auto* const row = MTCommandTables::fontStyleNamed(name);
    return row ? std::optional(row->style) : std::nullopt;
}

QString fontNameForStyle(MTFontStyle style) {
    switch (style) {
    case MTFontStyle::defaultStyle:
        return QStringLiteral("mathnormal");
    case MTFontStyle::roman:
        return QStringLiteral("mathrm");
    case MTFontStyle::bold:
        return QStringLiteral("mathbf");
    case MTFontStyle::caligraphic:
        return QStringLiteral("mathcal");
    case MTFontStyle::typewriter:
        return QStringLiteral("mathtt");
    case MTFontStyle::italic:
        return QStringLiteral("mathit");
    case MTFontStyle::sansSerif:
        return QStringLiteral("mathsf");
    case MTFontStyle::fraktur:
        return QStringLiteral("mathfrak");
    case MTFontStyle::blackboard:
        return QStringLiteral("mathbb");
    case MTFontStyle::boldItalic:
        return QStringLiteral("bm");
    }
    return {};
}

std::shared_ptr<MTMathAtom> times() {
    return std::make_shared<MTMathAtom>(MTMathAtomType::binaryOperator, QStringLiteral("\u00D7"));
}

std::shared_ptr<MTMathAtom> divide() {
    return std::make_shared<MTMathAtom>(MTMathAtomType::binaryOperator, QStringLiteral("\u00F7"));
}

std::shared_ptr<MTMathAtom> placeholder() {
    return std::make_shared<MTMathAtom>(MTMathAtomType::placeholder, QStringLiteral("\u25A1"));
}

std::shared_ptr<MTFraction> placeholderFraction() {
    return fraction(std::make_shared<MTMathList>(placeholder()), std::make_shared<MTMathList>(placeholder()));
}

std::shared_ptr<MTRadical> placeholderSquareRoot() {
    auto radical = std::make_shared<MTRadical>();
    radical->radicand = std::make_shared<MTMathList>(placeholder());
    return radical;
}

std::shared_ptr<MTRadical> placeholderRadical() {
    std::shared_ptr<MTRadical> radical = placeholderSquareRoot();
    radical->degree = std::make_shared<MTMathList>(placeholder());
    return radical;
}

std::shared_ptr<MTFraction> fraction(std::shared_ptr<MTMathList> numerator, std::shared_ptr<MTMathList> denominator) {
    auto atom = std::make_shared<MTFraction>();
    atom->numerator = std::move(numerator);
    atom->denominator = std::move(denominator);
    return atom;
}

std::shared_ptr<MTFraction> fraction(QStringView numerator, QStringView denominator) {
    return fraction(mathListForCharacters(numerator), mathListForCharacters(denominator));
}

std::vector<std::shared_ptr<MTMathAtom>> atomList(QStringView text) {
    std::vector<std::shared_ptr<MTMathAtom>> atoms;
    GraphemeClusters::Reader reader(text);
    while (reader.hasCharacters()) {
        if (std::shared_ptr<MTMathAtom> atom = atomForCharacter(reader.next()))
            atoms.push_back(std::move(atom));
    }
    return atoms;
}

std::shared_ptr<MTMathList> mathListForCharacters(QStringView text) {
    return std::make_shared<MTMathList>(atomList(text));
}

} // namespace MTMathAtomFactory
