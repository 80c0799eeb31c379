#pragma once

#include "MathFont.h"

#include <QHashFunctions>

/// A math font and a size in points: what a sized font is kept under.
struct CTFontSizePair {
    MathFont font;
    double size;

    friend bool operator==(const CTFontSizePair&, const CTFontSizePair&) = default;
    friend std::size_t qHash(const CTFontSizePair& pair, std::size_t seed = 0) {
        return qHashMulti(seed, static_cast<std::uint8_t>(pair.font), pair.size);
    }
};
