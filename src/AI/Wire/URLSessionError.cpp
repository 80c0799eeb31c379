#include "URLSessionError.h"

URLSessionError::URLSessionError(const QString& sentence) : std::runtime_error(sentence.toStdString()) {}

/// What follows the name of the service.
static QString whatHappened(QNetworkReply::NetworkError error, bool isBuiltIn) {
    switch (error) {
    case QNetworkReply::ConnectionRefusedError:
        return isBuiltIn ? QStringLiteral(" refused the connection. Ask again later.")
                         : QStringLiteral(" refused the connection. Check that it is running.");
    case QNetworkReply::HostNotFoundError:
        return isBuiltIn ? QStringLiteral(" couldn't be found. Check your internet connection.")
                         : QStringLiteral(" couldn't be found. Check your internet connection and the API URL in "
                                          "Edit > Settings…");
    case QNetworkReply::RemoteHostClosedError:
        return QStringLiteral(" ended the connection before its answer was complete. Ask again.");
    case QNetworkReply::TimeoutError:
    case QNetworkReply::OperationCanceledError: // which is what a transfer that takes too long ends with
        return QStringLiteral(" didn't answer in time. Ask again.");
    case QNetworkReply::SslHandshakeFailedError:
        return QStringLiteral(" couldn't prove who it is, so nothing was sent to it.");
    case QNetworkReply::InsecureRedirectError:
        return isBuiltIn ? QStringLiteral(" pointed to another address. Quillo doesn't follow, so that your question "
                                          "stays where you sent it.")
                         : QStringLiteral(" pointed to another address. Quillo doesn't follow, so that your key and "
                                          "your question stay where you sent them. Check the API URL in Quillo > "
                                          "Settings…");
    case QNetworkReply::TooManyRedirectsError:
        return QStringLiteral(" sends requests in a circle.");
    case QNetworkReply::TemporaryNetworkFailureError:
    case QNetworkReply::NetworkSessionFailedError:
    case QNetworkReply::UnknownNetworkError:
        return QStringLiteral(" can't be reached. Check your internet connection.");
    default:
        return QStringLiteral(" couldn't be asked because the connection failed. Ask again.");
    }
}

URLSessionError URLSessionError::forNetworkError(QNetworkReply::NetworkError error, const AIService& service) {
    return URLSessionError(service.name() + whatHappened(error, service.isBuiltIn));
}
