#pragma once

#include <QString>

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

private:
    bool m_isHelpedBySaveAs = false;
};
