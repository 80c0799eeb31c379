#pragma once

#include <QString>

#include <stdexcept>

/// This build of Quillo brings no AI service, so nobody was asked. `what()` is the sentence for the user.
class NoBuiltInServiceError : public std::runtime_error {
public:
    NoBuiltInServiceError()
        : std::runtime_error(QStringLiteral("This copy of Quillo has no built-in AI service: save a key of your own in "
                                            "Edit > Settings…, then open the document again to ask.")
                                 .toStdString()) {}
};
