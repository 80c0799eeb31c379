#include "MTAccentedCharacters.h"

#include "MTCommandTables.h"

#include <QString>

#include <algorithm>
#include <vector>

namespace {

/// Behind the last block that has precomposed Latin letters (Latin Extended Additional).
constexpr char32_t endOfPrecomposedLatin = 0x1F00;

/// No precomposed Latin letter has more marks than three, and with a surrogate pair for a base that makes five.
constexpr qsizetype longestDecomposition = 5;

std::vector<MTAccentedCharacter> makeAccentedCharacters() {
    std::vector<MTAccentedCharacter> rows;
    for (char32_t character = 0x80; character < endOfPrecomposedLatin; ++character) {
        if (QChar::script(character) != QChar::Script_Latin || QChar::decompositionTag(character) != QChar::Canonical)
            continue;
        const QString parts = QString::fromUcs4(&character, 1).normalized(QString::NormalizationForm_D);
        const MTCommandTables::Accent* const accent = MTCommandTables::accentWithCharacter(QStringView(parts).last(1));
        if (parts.size() > 1 && accent) {
            rows.push_back({character, parts.chopped(1).normalized(QString::NormalizationForm_C),
                            MTCommandTables::string(accent->name)});
        }
    }
    return rows;
}

} // namespace

std::span<const MTAccentedCharacter> supportedAccentedCharacters() {
    static const std::vector<MTAccentedCharacter> rows = makeAccentedCharacters();
    return rows;
}

const MTAccentedCharacter* accentedCharacter(QStringView character) {
    if (character.size() > longestDecomposition)
        return nullptr;
    char16_t composed = 0;
    if (character.size() == 1) {
        composed = character.front().unicode();
    } else {
        const QString text = character.toString().normalized(QString::NormalizationForm_C);
        composed = text.size() == 1 ? text.front().unicode() : u'\0';
    }
    if (composed < 0x80)
        return nullptr;
    const std::span<const MTAccentedCharacter> rows = supportedAccentedCharacters();
    const auto row =
        std::lower_bound(rows.begin(), rows.end(), composed, [](const MTAccentedCharacter& candidate, char16_t wanted) {
            return candidate.character < wanted;
        });
    return row != rows.end() && row->character == composed ? &*row : nullptr;
}
