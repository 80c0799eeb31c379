#pragma once

#include <QStringView>

#include <optional>

class QString;

/// Spaces of formulas in mu, eighteenths of an em.
namespace DialectSpaces {

/// Commands of the engine whose spaces add up to `mu`, which is limited to some ems. Empty for 0.
[[nodiscard]] QString latex(int mu);

/// A length of TeX such as "1.5em", "-3mu" or "2pt"; none for what is no length.
[[nodiscard]] std::optional<int> muOf(QStringView length);

} // namespace DialectSpaces
