#pragma once

#include "AIService.h"

#include <QNetworkReply>
#include <QString>

#include <stdexcept>

/// A request brought no whole reply. `what()` is the sentence for the user; of the address it names only the host, and
/// nothing of the built-in service's.
class URLSessionError : public std::runtime_error {
public:
    explicit URLSessionError(const QString& sentence);

    /// The sentence for a failed connection to `service`.
    [[nodiscard]] static URLSessionError forNetworkError(QNetworkReply::NetworkError error, const AIService& service);
};
