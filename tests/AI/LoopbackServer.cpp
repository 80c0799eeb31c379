#include "LoopbackServer.h"

#include <QHostAddress>
#include <QSslConfiguration>
#include <QSslServer>
#include <QTcpServer>
#include <QTcpSocket>

#include <utility>

QByteArray LoopbackServer::Request::header(const QByteArray& name) const {
    const QByteArray start = "\r\n" + name + ": ";
    const auto found = head.indexOf(start);
    if (found < 0)
        return {};
    const auto from = found + start.size();
    return head.mid(from, head.indexOf("\r\n", from) - from);
}

LoopbackServer::Reply LoopbackServer::json(int status, const QByteArray& body, const QByteArray& headerLines) {
    return [=](QTcpSocket& socket) {
        socket.write("HTTP/1.1 " + QByteArray::number(status) + " Status\r\nContent-Type: application/json\r\n" +
                     headerLines + "Content-Length: " + QByteArray::number(body.size()) + "\r\n\r\n" + body);
    };
}

LoopbackServer::Reply LoopbackServer::bytes(const QByteArray& bytes) {
    return [bytes](QTcpSocket& socket) {
        socket.write(bytes);
        socket.disconnectFromHost();
    };
}

LoopbackServer::Reply LoopbackServer::redirect(const QString& target, int status) {
    return json(status, "{}", "Location: " + target.toUtf8() + "\r\n");
}

LoopbackServer::LoopbackServer() : m_server(std::make_unique<QTcpServer>()), m_scheme(QStringLiteral("http")) {
    listen();
}

LoopbackServer::LoopbackServer(const QSslConfiguration& configuration) : m_scheme(QStringLiteral("https")) {
    auto server = std::make_unique<QSslServer>();
    server->setSslConfiguration(configuration);
    m_server = std::move(server);
    listen();
}

LoopbackServer::~LoopbackServer() = default;

void LoopbackServer::listen() {
    if (!m_server->listen(QHostAddress::LocalHost))
        qFatal("No server can listen on the loopback address.");
    connect(m_server.get(), &QTcpServer::pendingConnectionAvailable, this, [this] {
        while (QTcpSocket* socket = m_server->nextPendingConnection()) {
            connect(socket, &QIODevice::readyRead, this, [this, socket] { take(*socket); });
            connect(socket, &QAbstractSocket::disconnected, socket, &QObject::deleteLater);
            take(*socket);
        }
    });
}

QUrl LoopbackServer::url(const QString& path) const {
    return QUrl(m_scheme + QStringLiteral("://127.0.0.1:%1").arg(m_server->serverPort()) + path);
}

/// Answers the request on the connection once it is there as a whole.
void LoopbackServer::take(QTcpSocket& socket) {
    const QByteArray received = socket.peek(socket.bytesAvailable());
    const auto headSize = received.indexOf("\r\n\r\n");
    if (headSize < 0)
        return;
    Request request{received.left(headSize + 2), {}};
    const qint64 bodySize = request.header("Content-Length").toLongLong();
    if (received.size() < headSize + 4 + bodySize)
        return;
    socket.skip(headSize + 4);
    request.body = socket.read(bodySize);
    m_requests.push_back(std::move(request));

    if (m_replies.empty()) {
        json(500, R"({"error":"The test has no reply for this."})")(socket);
        return;
    }
    const Reply reply = std::move(m_replies.front());
    m_replies.pop_front();
    reply(socket);
}
