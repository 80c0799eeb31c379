#include "CharacterReference.h"

#include <algorithm>
#include <iterator>
#include <optional>

namespace {

struct Name {
    QLatin1String name;
    char16_t character;
};

} // namespace

/// Those that people type in prose.
static constexpr Name names[] = {
    {QLatin1String("amp"), u'&'},         {QLatin1String("apos"), u'\''},       {QLatin1String("copy"), u'\u00A9'},
    {QLatin1String("deg"), u'\u00B0'},    {QLatin1String("euro"), u'\u20AC'},   {QLatin1String("ge"), u'\u2265'},
    {QLatin1String("gt"), u'>'},          {QLatin1String("hellip"), u'\u2026'}, {QLatin1String("larr"), u'\u2190'},
    {QLatin1String("laquo"), u'\u00AB'},  {QLatin1String("ldquo"), u'\u201C'},  {QLatin1String("le"), u'\u2264'},
    {QLatin1String("lsquo"), u'\u2018'},  {QLatin1String("lt"), u'<'},          {QLatin1String("mdash"), u'\u2014'},
    {QLatin1String("middot"), u'\u00B7'}, {QLatin1String("nbsp"), u'\u00A0'},   {QLatin1String("ndash"), u'\u2013'},
    {QLatin1String("ne"), u'\u2260'},     {QLatin1String("plusmn"), u'\u00B1'}, {QLatin1String("quot"), u'"'},
    {QLatin1String("raquo"), u'\u00BB'},  {QLatin1String("rarr"), u'\u2192'},   {QLatin1String("rdquo"), u'\u201D'},
    {QLatin1String("reg"), u'\u00AE'},    {QLatin1String("rsquo"), u'\u2019'},  {QLatin1String("sect"), u'\u00A7'},
    {QLatin1String("times"), u'\u00D7'},  {QLatin1String("trade"), u'\u2122'},
};

static std::optional<char32_t> numbered(QStringView number) {
    const bool isHexadecimal = number.startsWith(u'x', Qt::CaseInsensitive);
    bool valid = false;
    const uint code = isHexadecimal ? number.sliced(1).toUInt(&valid, 16) : number.toUInt(&valid, 10);
    const bool isCharacter = valid && code >= u' ' && code <= QChar::LastValidCodePoint && !QChar::isSurrogate(code);
    return isCharacter ? std::optional<char32_t>(code) : std::nullopt;
}

QString CharacterReference::decoded(const QString& reference) {
    const QStringView content = QStringView(reference).sliced(1).chopped(1);
    if (content.startsWith(u'#')) {
        const auto character = numbered(content.sliced(1));
        return character ? QString::fromUcs4(&*character, 1) : reference;
    }
    const auto* const found = std::find_if(std::begin(names), std::end(names),
                                           [content](const Name& entry) { return entry.name == content; });
    return found == std::end(names) ? reference : QString(QChar(found->character));
}
