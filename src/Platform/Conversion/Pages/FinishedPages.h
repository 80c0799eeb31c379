#pragma once

#include "LetterPages.h"

#include <QString>

#include <vector>

/// What Qt's writer of PDFs leaves out.
namespace FinishedPages {

struct Changes {
    QString title; ///< none when it is empty
    std::vector<LetterPages::Link> links;
    const GlyphPlaces& places;
    bool dropsHiddenText = false; ///< text outside of the frames goes
};

/// Copies the pages that Qt wrote to `drawn` to the file `finished` with these changes. The characters behind glyphs
/// become those that a person types: letters of ligatures, letters in Arabic words, of glyphs that stand for
/// them together. Throws std::exception.
void write(const QString& drawn, const QString& finished, const Changes& changes);

} // namespace FinishedPages
