#pragma once

#include "FileStamp.h"

#include <QString>

#include <optional>
#include <stdexcept>

class FileError;

/// A document could not be read or written. `sentence()` tells the user why, in complete sentences that do not name the
/// document, since the title of the message does.
class DocumentError : public std::runtime_error {
public:
    explicit DocumentError(const QString& sentence);

    /// For a document that could not be stored: says also what the user can do.
    explicit DocumentError(const FileError& error);

    /// The same for whatever reading or writing has thrown; logs its causes.
    static DocumentError from(const std::exception& error);

    QString sentence() const;

    /// True when the document can be stored under another name or in another place.
    bool isHelpedBySaveAs() const { return m_isHelpedBySaveAs; }

    /// Nothing was written since the file would have lost a digital signature.
    [[nodiscard]] static DocumentError ofSignatures(const QString& sentence);
    [[nodiscard]] bool breaksSignatures() const { return m_breaksSignatures; }

    /// The stamp of the file that another program has put in the place of the one that was to be replaced; none when
    /// that isn't what failed.
    const std::optional<FileStamp>& changedFile() const { return m_changedFile; }

private:
    std::optional<FileStamp> m_changedFile;
    bool m_isHelpedBySaveAs = false;
    bool m_breaksSignatures = false;
};
