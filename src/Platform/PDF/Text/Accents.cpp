#include "Accents.h"

#include <algorithm>

char16_t Accents::combining(int character) {
    switch (character) {
    case '`':
    case 0x2CB:
        return 0x300;
    case 0xB4:
    case 0x2CA:
        return 0x301;
    case '^':
    case 0x2C6:
        return 0x302;
    case '~':
    case 0x2DC:
        return 0x303;
    case 0xAF:
    case 0x2C9:
        return 0x304;
    case 0x2D8:
        return 0x306;
    case 0x2D9:
        return 0x307;
    case 0xA8:
        return 0x308;
    case 0xB0: // fonts without a ring have the degree sign in its place
    case 0x2DA:
        return 0x30A;
    case 0x2DD:
        return 0x30B;
    case 0x2C7:
        return 0x30C;
    case 0xB8:
        return 0x327;
    case 0x2DB:
        return 0x328;
    default:
        return (character >= 0x300 && character < 0x370) || (character >= 0x20D0 && character < 0x2100)
                   ? char16_t(character)
                   : char16_t(0);
    }
}

bool Accents::covers(Extent accent, Extent letter) {
    constexpr double leastShare = 0.6; // of the narrower one; side by side they overlap by less
    const double narrower = std::min(accent.to - accent.from, letter.to - letter.from);
    return narrower > 0 && std::min(accent.to, letter.to) - std::max(accent.from, letter.from) >= leastShare * narrower;
}

QString Accents::joined(int letter, const QString& combiningAccents) {
    constexpr int dotlessI = 0x131;
    constexpr int dotlessJ = 0x237;
    if (letter <= 0 || letter > 0xFFFF || !QChar(char16_t(letter)).isLetter())
        return {};
    const auto dotted = letter == dotlessI ? u'i' : letter == dotlessJ ? u'j' : char16_t(letter);
    return (QChar(dotted) + combiningAccents).normalized(QString::NormalizationForm_C);
}
