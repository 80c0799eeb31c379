#pragma once

#include <QString>

class UserDefaults;

/// Whether unsaved changes are kept on the disk for recovery. On, unless the user has turned it off: who works from an
/// encrypted volume may not want them elsewhere.
namespace RecoverySetting {

[[nodiscard]] const QString& key();
[[nodiscard]] bool isOn(const UserDefaults& defaults);
void setOn(UserDefaults& defaults, bool isOn);

} // namespace RecoverySetting
