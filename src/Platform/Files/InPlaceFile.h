#pragma once

#include "FileStamp.h"

#include <filesystem>

/// Writing to a file in a folder that takes no new files, where the file can't be replaced at once. Its new content is
/// complete in another file first, which stays when the writing fails, or the machine, in its midst. Blocks; any
/// thread; failures are a `FileError`.
namespace InPlaceFile {

/// The folder for such contents, below the user's state folder. Makes it, for this user only.
[[nodiscard]] std::filesystem::path folderForCopies();

/// Gives `content`, the file with what `target` is to get, a name by which a person knows it again, in that folder or
/// else in its own. The new name, or the old one when it can have no other.
[[nodiscard]] std::filesystem::path keep(const std::filesystem::path& content, const std::filesystem::path& target);

/// Gives `target`, which keeps all else, the content of `copy` and returns when it is safely on the disk. Throws with
/// `target` as it was when there isn't room for it; a failure after that says where the copy is. `isCopyNeeded` is true
/// when this ends in such a failure.
[[nodiscard]] FileStamp overwrite(const std::filesystem::path& target, const std::filesystem::path& copy,
                                  bool& isCopyNeeded);

} // namespace InPlaceFile
