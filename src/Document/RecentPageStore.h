#pragma once

#include <optional>

class QUrl;
class UserDefaults;

/// Remembers the last page of each file, by the file's path. Entries are kept for good; a moved file starts anew.
/// Page indices are zero-based.
namespace RecentPageStore {

/// None when the file has no entry. Whether the page still exists is for the caller to check.
[[nodiscard]] std::optional<int> pageIndex(const UserDefaults& defaults, const QUrl& url);

/// Entries that can't be read, the store as a whole being something else than paths with numbers, are replaced.
void setPageIndex(UserDefaults& defaults, int index, const QUrl& url);

/// Forgets all files.
void clear(UserDefaults& defaults);

} // namespace RecentPageStore
