#pragma once

#include <QString>

/// Characters written as "&amp;", "&#38;" or "&#x26;".
namespace CharacterReference {

/// The character, or the reference as it is when it is unknown or names a control
/// character or none.
[[nodiscard]] QString decoded(const QString& reference);

} // namespace CharacterReference
