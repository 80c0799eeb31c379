#include "MTCommandTables.h"

#include "MTTextIndex.h"

#include <array>

namespace {

using MTCommandTables::Accent;

constexpr std::array<Accent, 12> accents{{
    {u"grave", u"\u0300"},
    {u"acute", u"\u0301"},
    {u"hat", u"\u0302"},
    {u"tilde", u"\u0303"},
    {u"bar", u"\u0304"},
    {u"breve", u"\u0306"},
    {u"dot", u"\u0307"},
    {u"ddot", u"\u0308"},
    {u"check", u"\u030C"},
    {u"vec", u"\u20D7"},
    {u"widehat", u"\u0302"},
    {u"widetilde", u"\u0303"},
}};

constexpr MTTextIndex accentsByName(accents, &Accent::name);
constexpr MTTextIndex accentsByCharacter(accents, &Accent::character, &MTCommandTables::nameComesFirst<Accent>);

} // namespace

namespace MTCommandTables {

std::span<const Accent> allAccents() {
    return accents;
}

const Accent* accentNamed(QStringView name) {
    return accentsByName.find(name);
}

const Accent* accentWithCharacter(QStringView character) {
    return accentsByCharacter.find(character);
}

} // namespace MTCommandTables
