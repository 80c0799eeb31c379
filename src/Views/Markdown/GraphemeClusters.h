#pragma once

#include <QStringView>

/// Questions about user-perceived characters.
namespace GraphemeClusters {

/// True when the code unit at `index` is a whole user-perceived character: nothing before or behind it, such as a
/// combining mark, belongs to the same one. Looks at the neighbours only.
[[nodiscard]] bool standsAlone(QStringView text, qsizetype index);

} // namespace GraphemeClusters
