#include "SpotlightTextExtractor.h"

#include "Descriptor.h"
#include "Logging.h"
#include "PDFSource.h"
#include "PageText.h"

#include <QDBusConnection>
#include <QDBusConnectionInterface>
#include <QDBusMessage>
#include <QDBusUnixFileDescriptor>
#include <QUrl>
#include <QUuid>
#include <QVariantMap>

#include <cerrno>
#include <chrono>
#include <cstring>
#include <thread>

#include <fcntl.h>
#include <poll.h>
#include <unistd.h>

namespace {

constexpr int answerTime = 2000;                          // milliseconds
constexpr qsizetype longestAnswer = qsizetype(16) << 20U; // bytes

std::optional<QString> trimmed(const QString& text) {
    const QString words = text.trimmed();
    return words.isEmpty() ? std::nullopt : std::optional(words);
}

/// All that comes until the other end is closed, too much has come, or it has taken too long.
QByteArray readAll(int descriptor) {
    const auto latest = std::chrono::steady_clock::now() + std::chrono::milliseconds(2 * answerTime);
    QByteArray bytes;
    char block[65536];
    while (bytes.size() < longestAnswer && std::chrono::steady_clock::now() < latest) {
        constexpr int look = 50; // milliseconds
        pollfd waiting{descriptor, POLLIN, 0};
        if (poll(&waiting, 1, look) <= 0)
            continue;
        const ssize_t count = read(descriptor, block, sizeof block);
        if (count == 0 || (count < 0 && errno != EINTR && errno != EAGAIN))
            break;
        if (count > 0)
            bytes.append(block, qsizetype(count));
    }
    return bytes;
}

/// The first value of an answer: a row is the number of its values, the type of each, where each ends, and the values,
/// each with a zero behind it. Numbers are as the machine has them.
QString firstValue(const QByteArray& answer) {
    qint32 row[3] = {}; // of one column
    if (answer.size() < qsizetype(sizeof row))
        return {};
    std::memcpy(row, answer.constData(), sizeof row);
    const auto [columns, type, end] = row;
    if (columns != 1 || end < 0 || qsizetype(sizeof row) + end > answer.size())
        return {};
    return QString::fromUtf8(answer.constData() + sizeof row, end);
}

/// As the service writes addresses of files.
QByteArray addressOf(const QString& path) {
    return "file://" + QUrl::toPercentEncoding(path, "!$&'()*+,/:=@");
}

QString askIndex(QDBusConnection& bus, const QString& service, const QString& path) {
    int ends[2] = {-1, -1};
    if (pipe2(ends, O_CLOEXEC) != 0)
        return {};
    const Descriptor reading(ends[0]);
    QByteArray answer;
    // Read while it is asked: who answers may wait for that.
    std::thread reader([&answer, &reading] { answer = readAll(reading.number()); });
    {
        QDBusUnixFileDescriptor writing;
        writing.giveFileDescriptor(ends[1]);
        QDBusMessage query = QDBusMessage::createMethodCall(
            service, QStringLiteral("/org/freedesktop/Tracker3/Endpoint"),
            QStringLiteral("org.freedesktop.Tracker3.Endpoint"), QStringLiteral("Query"));
        query << QString::fromLatin1("SELECT ?text { ?content nie:isStoredAs <" + addressOf(path) +
                                     "> ; nie:plainTextContent ?text } LIMIT 1")
              << QVariant::fromValue(writing) << QVariantMap();
        query.setAutoStartService(false);
        const QDBusMessage reply = bus.call(query, QDBus::Block, answerTime);
        if (reply.type() == QDBusMessage::ErrorMessage)
            qCWarning(Logging::document) << "the search service didn't answer:" << reply.errorName();
    }
    reader.join();
    return firstValue(answer);
}

} // namespace

std::optional<QString> SpotlightTextExtractor::indexedText(const QString& path) {
    // A connection of this thread's own, since the answer is waited for.
    const QString name = QUuid::createUuid().toString();
    std::optional<QString> text;
    {
        QDBusConnection bus = QDBusConnection::connectToBus(QDBusConnection::SessionBus, name);
        if (bus.isConnected()) {
            for (const QString& service : {QStringLiteral("org.freedesktop.Tracker3.Miner.Files"),
                                           QStringLiteral("org.freedesktop.LocalSearch3")}) {
                if (!text && bus.interface()->isServiceRegistered(service))
                    text = trimmed(askIndex(bus, service, path));
            }
        }
    }
    QDBusConnection::disconnectFromBus(name);
    return text;
}

std::optional<QString> SpotlightTextExtractor::textOfPages(const PDFSource& pages, const std::stop_token& stop) {
    QString text;
    for (int i = 0; i < pages.pageCount() && text.size() < longestAnswer && !stop.stop_requested(); ++i)
        text += pages.readText(i, stop)->string + QStringLiteral("\n\n");
    return trimmed(text);
}
