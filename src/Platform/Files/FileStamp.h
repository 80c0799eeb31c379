#pragma once

#include <QString>

#include <cstdint>
#include <optional>

struct stat;

/// Tells one content of a file from another without reading it: a file that was replaced or written to since has
/// another stamp.
struct FileStamp {
    std::uint64_t device = 0;
    std::uint64_t inode = 0;
    std::int64_t size = 0;
    std::int64_t modifiedInNanoseconds = 0; ///< since 1970

    /// The stamp of the file at `path`, symbolic links followed. None when there is no ordinary file, or it can't be
    /// looked up.
    [[nodiscard]] static std::optional<FileStamp> of(const QString& path);

    /// The stamp of an ordinary file with that status.
    [[nodiscard]] static FileStamp of(const struct stat& status);

    bool operator==(const FileStamp&) const = default;
};
