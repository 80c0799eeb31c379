#include "FontTables.h"

#include "EngineContext.h"

#include <map>

namespace {

/// Past the last character that a standard font has.
constexpr char32_t charactersEnd = 0x2600;

std::vector<double> readWidths(const QByteArray& name) {
    std::vector<double> widths(charactersEnd, 0);
    const EngineInstance instance;
    const EngineContext context(instance);
    if (!context.get())
        return widths;
    fz_font* font = nullptr;
    engineTry(context.get(), [&] {
        font = fz_new_base14_font(context.get(), name.constData());
        for (char32_t c = ' '; c < charactersEnd; ++c)
            if (const int glyph = fz_encode_character(context.get(), font, int(c)); glyph > 0)
                widths[c] = double(fz_advance_glyph(context.get(), font, glyph, 0)) * 1000;
    });
    fz_drop_font(context.get(), font);
    return widths;
}

} // namespace

std::vector<char32_t> FontTables::characters(Encoding encoding) {
    // That of Windows itself, since the file format's has bullets at the codes that are free there.
    const char* const* const names = encoding == Encoding::winAnsi    ? fz_glyph_name_from_windows_1252
                                     : encoding == Encoding::macRoman ? fz_glyph_name_from_mac_roman
                                                                      : fz_glyph_name_from_adobe_standard;
    std::vector<char32_t> found(256, 0);
    for (std::size_t code = 0; code < found.size(); ++code)
        if (names[code])
            found[code] = character(names[code]);
    return found;
}

char32_t FontTables::character(const QByteArray& glyph) {
    if (const int known = fz_unicode_from_glyph_name_strict(glyph.constData()); known > 0)
        return char32_t(known);
    // Other names that end in a number are those of nothing but a code.
    const bool tellsNumber =
        (glyph.startsWith("uni") && glyph.size() == 7) || (glyph.startsWith('u') && glyph.size() > 4);
    const int number = tellsNumber ? fz_unicode_from_glyph_name(glyph.constData()) : 0;
    return number > 0 && number != FZ_REPLACEMENT_CHARACTER ? char32_t(number) : 0;
}

std::vector<double> FontTables::widths(const QByteArray& standardFont, const std::vector<char32_t>& characters) {
    static std::mutex mutex;
    static std::map<QByteArray, std::vector<double>> known;
    const std::lock_guard guard(mutex);
    auto found = known.find(standardFont);
    if (found == known.end())
        found = known.emplace(standardFont, readWidths(standardFont)).first;
    std::vector<double> widths;
    widths.reserve(characters.size());
    for (const char32_t c : characters)
        widths.push_back(c < charactersEnd ? found->second[c] : 0);
    return widths;
}
