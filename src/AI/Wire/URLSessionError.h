#pragma once

#include <QNetworkReply>
#include <QString>

#include <stdexcept>

/// A request brought no whole reply. `what()` is the sentence for the user; of the address it names only the host.
class URLSessionError : public std::runtime_error {
public:
    explicit URLSessionError(const QString& sentence);

    /// The sentence for a failed connection to `host`.
    [[nodiscard]] static URLSessionError forNetworkError(QNetworkReply::NetworkError error, const QString& host);
};
