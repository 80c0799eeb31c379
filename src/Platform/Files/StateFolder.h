#pragma once

#include <QString>

/// The folder of this user for what programs keep from one run to the next and nobody needs to back up, as the XDG base
/// directories have it.
namespace StateFolder {

/// Absolute; it need not be there.
[[nodiscard]] QString path();

} // namespace StateFolder
