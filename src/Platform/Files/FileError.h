#pragma once

#include <QString>

#include <stdexcept>

/// A file could not be written. `sentence()` tells the user why, in one or two complete sentences that do not name the
/// file, so that the caller can put the name in front of it.
class FileError : public std::runtime_error {
public:
    explicit FileError(const QString& sentence);

    /// The sentence for an `errno` value of a file operation.
    static FileError forSystemError(int errorNumber);

    [[nodiscard]] QString sentence() const;
};
