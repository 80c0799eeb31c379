#include "SaslPrep.h"

#include <QList>

#include <algorithm>
#include <array>

namespace {

struct Range {
    uint first;
    uint last;
};

template <std::size_t N>
bool isIn(const std::array<Range, N>& ranges, uint character) {
    return std::any_of(ranges.begin(), ranges.end(),
                       [character](const Range& range) { return character >= range.first && character <= range.last; });
}

// Tables of RFC 3454.

constexpr std::array blanks{// C.1.2
                            Range{0xA0, 0xA0},     Range{0x1680, 0x1680}, Range{0x2000, 0x200B},
                            Range{0x202F, 0x202F}, Range{0x205F, 0x205F}, Range{0x3000, 0x3000}};
constexpr std::array dropped{// B.1
                             Range{0xAD, 0xAD},     Range{0x34F, 0x34F},   Range{0x1806, 0x1806},
                             Range{0x180B, 0x180D}, Range{0x200C, 0x200D}, Range{0x2060, 0x2060},
                             Range{0xFE00, 0xFE0F}, Range{0xFEFF, 0xFEFF}};
constexpr std::array prohibited{
    // C.2.1, C.2.2, C.3, C.5, C.6, C.7, C.8 and C.9
    Range{0x0, 0x1F},        Range{0x7F, 0x9F},       Range{0x340, 0x341},     Range{0x6DD, 0x6DD},
    Range{0x70F, 0x70F},     Range{0x180E, 0x180E},   Range{0x200C, 0x200F},   Range{0x2028, 0x202E},
    Range{0x2060, 0x2063},   Range{0x206A, 0x206F},   Range{0x2FF0, 0x2FFB},   Range{0xD800, 0xF8FF},
    Range{0xFDD0, 0xFDEF},   Range{0xFEFF, 0xFEFF},   Range{0xFFF9, 0xFFFD},   Range{0x1D173, 0x1D17A},
    Range{0xE0001, 0xE0001}, Range{0xE0020, 0xE007F}, Range{0xF0000, 0x10FFFF}};

bool isProhibited(uint character) {
    return isIn(prohibited, character) || (character & 0xFFFE) == 0xFFFE; // C.4
}

bool isRightToLeft(uint character) {
    const QChar::Direction direction = QChar::direction(character);
    return direction == QChar::DirR || direction == QChar::DirAL;
}

} // namespace

std::optional<QString> saslPrepared(const QString& password) {
    QString mapped;
    for (const uint character : password.toUcs4()) {
        if (isIn(blanks, character))
            mapped += QLatin1Char(' ');
        else if (!isIn(dropped, character))
            mapped += QString::fromUcs4(reinterpret_cast<const char32_t*>(&character), 1);
    }
    // Qt normalizes by the version of Unicode that the profile names, which is all of it that needs large tables.
    const QString prepared = mapped.normalized(QString::NormalizationForm_KC, QChar::Unicode_3_2);
    const QList<uint> characters = prepared.toUcs4();
    if (std::any_of(characters.begin(), characters.end(), isProhibited))
        return std::nullopt;
    if (!std::any_of(characters.begin(), characters.end(), isRightToLeft))
        return prepared;
    const bool hasOther = std::any_of(characters.begin(), characters.end(),
                                      [](uint character) { return QChar::direction(character) == QChar::DirL; });
    const bool isFramed = isRightToLeft(characters.front()) && isRightToLeft(characters.back());
    return isFramed && !hasOther ? std::optional(prepared) : std::nullopt;
}

QByteArray passwordBytes(const QString& password) {
    return saslPrepared(password).value_or(password).toUtf8();
}
