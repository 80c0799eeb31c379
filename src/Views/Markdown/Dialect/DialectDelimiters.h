#pragma once

#include "FormulaTokens.h"

#include <optional>

class QString;

/// Delimiters that grow, and those of a size of their own.
namespace DialectDelimiters {

/// What the engine reads behind \left and \right for a token; none for what is no delimiter.
[[nodiscard]] std::optional<QString> named(const FormulaToken& token);

/// A part without ink or width between delimiters that makes them as high as \big (1) to \Bigg (4).
[[nodiscard]] QString strut(int level);

/// Parts without ink or width that are about as high as the highest in `latex`, which is in the engine's vocabulary.
[[nodiscard]] QString strutLike(QStringView latex);

} // namespace DialectDelimiters
