#pragma once

#include <QString>

#include <stdexcept>

/// A document could not be read or written. `sentence()` tells the user why, in one or two complete sentences that do
/// not name the document, since the title of the message does.
class DocumentError : public std::runtime_error {
public:
    explicit DocumentError(const QString& sentence);

    QString sentence() const;
};
