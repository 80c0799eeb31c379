#pragma once

#include "FileStamp.h"

#include <QString>

#include <stdexcept>

/// A file could not be written. `sentence()` tells the user why, in one or two complete sentences that do not name the
/// file, so that the caller can put the name in front of it.
class FileError : public std::runtime_error {
public:
    /// What helps a user who wanted to store a document.
    enum class Remedy {
        none,
        anotherPlace, ///< the document can be stored in another folder or on another disk
        anotherName,  ///< in the same folder under another name
        freeSpace,    ///< on the same disk once there is space, or else in another place
        tryAgain,     ///< in a moment in the same place, or else in another
    };

    explicit FileError(const QString& sentence, Remedy remedy = Remedy::none);

    /// The sentence and the remedy for an `errno` value of a file operation.
    static FileError forSystemError(int errorNumber);

    [[nodiscard]] QString sentence() const;
    [[nodiscard]] Remedy remedy() const { return m_remedy; }

    /// What the user can do, as a sentence that speaks of the command "Save As"; empty when there is nothing.
    [[nodiscard]] QString advice() const;

private:
    Remedy m_remedy;
};

/// A file wasn't replaced because it isn't the one that was to be: another program has written to it.
class FileChangedError : public FileError {
public:
    explicit FileChangedError(const FileStamp& found);

    /// The stamp of the file that is there.
    [[nodiscard]] const FileStamp& found() const { return m_found; }

private:
    FileStamp m_found;
};
