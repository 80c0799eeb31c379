#pragma once

#include <QString>

#include <stdexcept>

/// A key could not be made or used. `what()` is the sentence for the user.
class CryptographyError : public std::runtime_error {
public:
    explicit CryptographyError(const QString& sentence) : std::runtime_error(sentence.toStdString()) {}
};
