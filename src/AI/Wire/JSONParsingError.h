#pragma once

#include <QJsonParseError>

#include <stdexcept>

/// A service's answer is no JSON. `what()` is the sentence for the user, with the parser's words.
class JSONParsingError : public std::runtime_error {
public:
    explicit JSONParsingError(const QJsonParseError& error);
};
