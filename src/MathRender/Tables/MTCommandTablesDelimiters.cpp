#include "MTCommandTables.h"

#include "MTTextIndex.h"

#include <array>

namespace {

using MTCommandTables::Delimiter;

constexpr std::array<Delimiter, 32> delimiters{{
    {u".", u""},
    {u"(", u"("},
    {u")", u")"},
    {u"[", u"["},
    {u"]", u"]"},
    {u"<", u"\u2329"},
    {u">", u"\u232A"},
    {u"/", u"/"},
    {u"\\", u"\\"},
    {u"|", u"|"},
    {u"lgroup", u"\u27EE"},
    {u"rgroup", u"\u27EF"},
    {u"||", u"\u2016"},
    {u"Vert", u"\u2016"},
    {u"vert", u"|"},
    {u"uparrow", u"\u2191"},
    {u"downarrow", u"\u2193"},
    {u"updownarrow", u"\u2195"},
    {u"Uparrow", u"\u21D1"},
    {u"Downarrow", u"\u21D3"},
    {u"Updownarrow", u"\u21D5"},
    {u"backslash", u"\\"},
    {u"rangle", u"\u232A"},
    {u"langle", u"\u2329"},
    {u"rbrace", u"}"},
    {u"}", u"}"},
    {u"{", u"{"},
    {u"lbrace", u"{"},
    {u"lceil", u"\u2308"},
    {u"rceil", u"\u2309"},
    {u"lfloor", u"\u230A"},
    {u"rfloor", u"\u230B"},
}};

constexpr MTTextIndex delimitersByName(delimiters, &Delimiter::name);
constexpr MTTextIndex delimitersByCharacter(delimiters, &Delimiter::character,
                                            &MTCommandTables::nameComesFirst<Delimiter>);

} // namespace

namespace MTCommandTables {

std::span<const Delimiter> allDelimiters() {
    return delimiters;
}

const Delimiter* delimiterNamed(QStringView name) {
    return delimitersByName.find(name);
}

const Delimiter* delimiterWithCharacter(QStringView character) {
    return delimitersByCharacter.find(character);
}

} // namespace MTCommandTables
