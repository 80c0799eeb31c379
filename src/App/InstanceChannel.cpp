#include "InstanceChannel.h"

#include <QDataStream>
#include <QDir>
#include <QElapsedTimer>
#include <QLocalServer>
#include <QLocalSocket>
#include <QLockFile>
#include <QRegularExpression>
#include <QStandardPaths>
#include <QThread>

// A message is a mark, the activation token and the files. The running process answers it with one byte, and acts when
// a byte confirms that: a sender that gave up waiting opens the files itself.
static constexpr quint32 messageMark = 0x51756c32;
static constexpr qint64 maximumMessageSize = 1 << 22;
static constexpr int connectTimeoutInMilliseconds = 5000;

static QByteArray encoded(const QStringList& files) {
    QByteArray message;
    QDataStream stream(&message, QIODevice::WriteOnly);
    stream.setVersion(QDataStream::Qt_6_0);
    stream << messageMark << qEnvironmentVariable("XDG_ACTIVATION_TOKEN") << files;
    return message;
}

InstanceChannel::InstanceChannel(QString socketPath, std::chrono::milliseconds patience, QObject* parent)
    : QObject(parent), m_socketPath(std::move(socketPath)), m_patience(patience) {}

InstanceChannel::~InstanceChannel() = default;

QString InstanceChannel::standardSocketPath() {
    QString display = qEnvironmentVariable("WAYLAND_DISPLAY");
    if (display.isEmpty())
        display = qEnvironmentVariable("DISPLAY");
    static const QRegularExpression notForFileNames(QStringLiteral("[^A-Za-z0-9.-]"));
    display.replace(notForFileNames, QStringLiteral("_"));
    return QStandardPaths::writableLocation(QStandardPaths::RuntimeLocation) +
           QStringLiteral("/quillo-%1.socket").arg(display);
}

InstanceChannel::Role InstanceChannel::start(const QStringList& files) {
    // Two starts at the same moment must not both find nobody there.
    QLockFile lock(m_socketPath + QStringLiteral(".lock"));
    if (!lock.tryLock(connectTimeoutInMilliseconds))
        return Role::alone;

    switch (deliver(files)) {
    case Delivery::done:
        return Role::handedOver;
    case Delivery::noAnswer:
        return Role::alone;
    case Delivery::nobodyThere:
        break;
    }

    QLocalServer::removeServer(m_socketPath);
    m_server = std::make_unique<QLocalServer>();
    m_server->setSocketOptions(QLocalServer::UserAccessOption);
    connect(m_server.get(), &QLocalServer::newConnection, this, &InstanceChannel::accept);
    if (m_server->listen(m_socketPath))
        return Role::first;
    m_server.reset();
    return Role::alone;
}

InstanceChannel::Delivery InstanceChannel::deliver(const QStringList& files) const {
    // A process that is about to end may leave the connection without a word. When it has ended, nobody is there.
    constexpr int attempts = 20;
    constexpr unsigned long pauseInMilliseconds = 50;
    Delivery delivery = Delivery::noAnswer;
    bool isLeft = true;
    for (int attempt = 0; isLeft && attempt < attempts; ++attempt) {
        if (attempt > 0)
            QThread::msleep(pauseInMilliseconds);
        delivery = deliverOnce(files, isLeft);
    }
    return delivery;
}

/// `isLeft` tells whether the other side ended the connection.
InstanceChannel::Delivery InstanceChannel::deliverOnce(const QStringList& files, bool& isLeft) const {
    isLeft = false;
    QLocalSocket socket;
    socket.connectToServer(m_socketPath);
    if (!socket.waitForConnected(connectTimeoutInMilliseconds))
        return socket.error() == QLocalSocket::SocketTimeoutError ? Delivery::noAnswer : Delivery::nobodyThere;
    socket.write(encoded(files));
    socket.flush();
    if (socket.waitForReadyRead(static_cast<int>(m_patience.count()))) {
        socket.write("\n");
        socket.waitForBytesWritten(connectTimeoutInMilliseconds);
        return Delivery::done;
    }
    isLeft = socket.error() == QLocalSocket::PeerClosedError;
    return Delivery::noAnswer;
}

void InstanceChannel::accept() {
    while (QLocalSocket* socket = m_server->nextPendingConnection()) {
        connect(socket, &QLocalSocket::disconnected, socket, &QObject::deleteLater);
        connect(socket, &QLocalSocket::readyRead, this, [this, socket] { read(socket); });
        read(socket);
    }
}

void InstanceChannel::read(QLocalSocket* socket) {
    quint32 mark = 0;
    QString activationToken;
    QStringList files;
    QDataStream stream(socket);
    stream.setVersion(QDataStream::Qt_6_0);
    stream.startTransaction();
    stream >> mark >> activationToken >> files;
    if (!stream.commitTransaction()) {
        if (socket->bytesAvailable() > maximumMessageSize)
            socket->abort();
        return;
    }
    if (mark != messageMark) {
        socket->abort();
        return;
    }
    socket->disconnect(this);
    connect(socket, &QLocalSocket::readyRead, this, [this, socket, files, activationToken] {
        if (socket->read(1).isEmpty())
            return;
        socket->disconnect(this);
        socket->disconnectFromServer();
        if (files.isEmpty())
            Q_EMIT reopenRequested(activationToken);
        else
            Q_EMIT filesReceived(files, activationToken);
    });
    socket->write("\n");
    socket->flush();
}
