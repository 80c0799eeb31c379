#pragma once

#include <optional>

class QUrl;
class UserDefaults;

/// Remembers the scale at which each file was last read, by the file's path. A file whose pages followed the width of
/// the view has no entry.
namespace RecentScaleStore {

/// A finite value above zero, where 1 shows a point as one device-independent pixel.
[[nodiscard]] std::optional<double> scale(const UserDefaults& defaults, const QUrl& url);

/// None removes the entry.
void setScale(UserDefaults& defaults, std::optional<double> scale, const QUrl& url);

/// Forgets all files.
void clear(UserDefaults& defaults);

} // namespace RecentScaleStore
