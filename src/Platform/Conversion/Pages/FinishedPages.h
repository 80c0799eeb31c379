#pragma once

#include "LetterPages.h"

#include <QString>

#include <vector>

/// What Qt's writer of PDFs leaves out.
namespace FinishedPages {

/// Copies the pages that Qt wrote to `drawn` to the file `finished` and adds the title, unless it is empty, and what
/// can be clicked. The characters behind glyphs become those that a person types: letters of ligatures, letters in
/// Arabic words. Throws std::exception.
void write(const QString& drawn, const QString& finished, const QString& title,
           const std::vector<LetterPages::Link>& links);

} // namespace FinishedPages
