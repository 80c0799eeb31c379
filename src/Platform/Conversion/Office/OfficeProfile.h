#pragma once

#include <QString>

/// The settings with which LibreOffice is started.
namespace OfficeProfile {

/// Makes a profile in a folder, which must not exist. False when it can't be written.
[[nodiscard]] bool write(const QString& folder);

} // namespace OfficeProfile
