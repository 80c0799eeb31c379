#pragma once

#include <QObject>
#include <QStringList>

#include <chrono>
#include <memory>

class QLocalServer;
class QLocalSocket;

/// Keeps Quillo one process for a user and a display. A later start hands its files to the running process and ends.
///
/// The socket lies in a folder of the user's own and takes no other user's connections. Main thread only.
class InstanceChannel : public QObject {
    Q_OBJECT

public:
    enum class Role {
        first,      ///< this process is the one that others reach from now on
        handedOver, ///< the running process has the files
        alone,      ///< there is no channel: the folder can't be written, or the running process doesn't answer
    };

    /// `patience` is how long a later start waits for the running process, which may be busy.
    explicit InstanceChannel(QString socketPath = standardSocketPath(),
                             std::chrono::milliseconds patience = std::chrono::seconds(5), QObject* parent = nullptr);
    ~InstanceChannel() override;

    [[nodiscard]] static QString standardSocketPath();

    /// Hands `files` (addresses, absolute, in order; none: only show a window) to the running process, or takes
    /// its place when there is none. What a crashed process left behind is cleared away. Blocks until the other
    /// process has answered, for as long as the patience lasts; what it hasn't taken by then it never opens.
    [[nodiscard]] Role start(const QStringList& files);

Q_SIGNALS:
    /// Another start handed these over. `activationToken` is what the desktop gave it to bring a window to the front;
    /// empty where there is none.
    void filesReceived(const QStringList& files, const QString& activationToken);
    /// Another start had no files.
    void reopenRequested(const QString& activationToken);

private:
    enum class Delivery { nobodyThere, done, noAnswer };

    Delivery deliver(const QStringList& files) const;
    Delivery deliverOnce(const QStringList& files, bool& isLeft) const;
    void accept();
    void read(QLocalSocket* socket);

    QString m_socketPath;
    std::chrono::milliseconds m_patience;
    std::unique_ptr<QLocalServer> m_server;
};
