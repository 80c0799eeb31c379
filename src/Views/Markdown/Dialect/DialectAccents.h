#pragma once

#include <QStringView>

class QString;

/// Letters with marks.
namespace DialectAccents {

/// `latex` under the engine's accents for `marks`, the innermost first; empty when it lacks one of them.
[[nodiscard]] QString accented(const QString& latex, QStringView marks);

/// The letter and the marks of a character that is both ("é"); empty for any other.
[[nodiscard]] QString decomposed(char32_t character);

} // namespace DialectAccents
