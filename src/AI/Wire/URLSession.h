#pragma once

#include <QByteArray>
#include <QCoroTask>
#include <QNetworkAccessManager>
#include <QObject>
#include <QUrl>

#include <chrono>
#include <memory>
#include <utility>
#include <vector>

class QNetworkRequest;

struct URLRequest {
    QUrl url;
    std::vector<std::pair<QByteArray, QByteArray>> headers;
    QByteArray body;
    bool isForBuiltInService = false; ///< which is not called by its address
};

struct URLReply {
    int status = -1; ///< of HTTP
    QByteArray body;
};

/// Sends HTTP requests whose replies are read as a whole. Main thread only, which never waits.
///
/// Nothing is remembered from one request to the next: no cookies, no credentials, no cache. A redirect is followed,
/// with the same method and body, only within its origin (scheme, host and port), so that what identifies the user goes
/// nowhere else. A connection that ends before any answer is tried a few times more.
class URLSession : public QObject {
    Q_OBJECT

public:
    /// A request fails once nothing has come or gone for `timeout`, or when its reply is longer than
    /// `maximumReplySize` bytes, unpacked.
    [[nodiscard]] static std::shared_ptr<URLSession>
    create(std::chrono::milliseconds timeout = std::chrono::seconds(60), qint64 maximumReplySize = qint64(16) << 20);

    /// Posts the request; the reply may have any status. Throws URLSessionError when there is no whole reply, and when
    /// the program quits. The request keeps its session alive.
    [[nodiscard]] static QCoro::Task<URLReply> post(std::shared_ptr<URLSession> session, URLRequest request);

private:
    struct Answer {
        URLReply reply;
        QUrl redirection; ///< empty for none
    };

    URLSession(std::chrono::milliseconds timeout, qint64 maximumReplySize);

    [[nodiscard]] QNetworkRequest networkRequest(const URLRequest& request) const;
    static QCoro::Task<Answer> postOnce(std::shared_ptr<URLSession> session, URLRequest request);
    void cancelAll();

    const std::chrono::milliseconds m_timeout;
    const qint64 m_maximumReplySize;
    QNetworkAccessManager m_network;
    bool m_isCancelled = false;
};
