#pragma once

#include <QByteArray>
#include <QObject>
#include <QString>
#include <QUrl>

#include <deque>
#include <functional>
#include <memory>
#include <vector>

class QSslConfiguration;
class QTcpServer;
class QTcpSocket;

/// An HTTP/1.1 server on the loopback address that keeps each request byte for byte and answers with what the test laid
/// ready. It lives in the test's own thread and works while an event loop runs.
class LoopbackServer : public QObject {
public:
    struct Request {
        QByteArray head; ///< request line and header lines, each ended by CR LF, without the empty line
        QByteArray body;

        [[nodiscard]] QByteArray requestLine() const { return head.left(head.indexOf("\r\n")); }
        /// The value of the first header line with exactly this name, upper and lower case included; null without one.
        [[nodiscard]] QByteArray header(const QByteArray& name) const;
    };

    /// Answers one request on its connection.
    using Reply = std::function<void(QTcpSocket& socket)>;
    /// A whole reply with its length; the connection stays open.
    [[nodiscard]] static Reply json(int status, const QByteArray& body, const QByteArray& headerLines = {});
    /// These bytes, and the end of the connection.
    [[nodiscard]] static Reply bytes(const QByteArray& bytes);
    /// 307 to `target`, which keeps method and body.
    [[nodiscard]] static Reply redirect(const QString& target, int status = 307);

    LoopbackServer();
    /// One that speaks TLS.
    explicit LoopbackServer(const QSslConfiguration& configuration);
    ~LoopbackServer() override;

    /// `http(s)://127.0.0.1:port` and `path`.
    [[nodiscard]] QUrl url(const QString& path) const;

    /// Replies are used up in order; a request without one gets an error 500 that says so.
    void enqueue(Reply reply) { m_replies.push_back(std::move(reply)); }
    void clearReplies() { m_replies.clear(); }
    [[nodiscard]] const std::vector<Request>& requests() const { return m_requests; }

private:
    void listen();
    void take(QTcpSocket& socket);

    std::unique_ptr<QTcpServer> m_server;
    QString m_scheme;
    std::deque<Reply> m_replies;
    std::vector<Request> m_requests;
};
