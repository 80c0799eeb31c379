#include "URLSessionError.h"

URLSessionError::URLSessionError(const QString& sentence) : std::runtime_error(sentence.toStdString()) {}

static QString sentenceFor(QNetworkReply::NetworkError error) {
    switch (error) {
    case QNetworkReply::ConnectionRefusedError:
        return QStringLiteral("The AI service at “%1” refused the connection. Check that it is running.");
    case QNetworkReply::HostNotFoundError:
        return QStringLiteral(
            "The AI service at “%1” couldn't be found. Check your internet connection and the API URL in "
            "Quillo > Settings…");
    case QNetworkReply::RemoteHostClosedError:
        return QStringLiteral("The AI service at “%1” ended the connection before its answer was complete. Ask again.");
    case QNetworkReply::TimeoutError:
    case QNetworkReply::OperationCanceledError: // which is what a transfer that takes too long ends with
        return QStringLiteral("The AI service at “%1” didn't answer in time. Ask again.");
    case QNetworkReply::SslHandshakeFailedError:
        return QStringLiteral("The AI service at “%1” couldn't prove who it is, so nothing was sent to it.");
    case QNetworkReply::InsecureRedirectError:
        return QStringLiteral(
            "The AI service at “%1” pointed to another address. Quillo doesn't follow, so that your key and your "
            "question stay where you sent them. Check the API URL in Quillo > Settings…");
    case QNetworkReply::TooManyRedirectsError:
        return QStringLiteral("The AI service at “%1” sends requests in a circle.");
    case QNetworkReply::TemporaryNetworkFailureError:
    case QNetworkReply::NetworkSessionFailedError:
    case QNetworkReply::UnknownNetworkError:
        return QStringLiteral("The AI service at “%1” can't be reached. Check your internet connection.");
    default:
        return QStringLiteral("The connection to the AI service at “%1” failed. Ask again.");
    }
}

URLSessionError URLSessionError::forNetworkError(QNetworkReply::NetworkError error, const QString& host) {
    return URLSessionError(sentenceFor(error).arg(host));
}
