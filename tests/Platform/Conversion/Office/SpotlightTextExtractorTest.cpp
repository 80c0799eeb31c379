#include "SpotlightTextExtractor.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusUnixFileDescriptor>
#include <QFutureWatcher>
#include <QProcess>
#include <QSignalSpy>
#include <QVariantMap>
#include <QtConcurrentRun>

#include <gtest/gtest.h>
#include <unistd.h>

namespace {

/// The search service of a desktop that knows one file.
class SearchService : public QObject {
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.freedesktop.Tracker3.Endpoint")

public:
    QByteArray text; ///< none for a row that is cut off

public Q_SLOTS:
    QStringList Query(const QString& query, const QDBusUnixFileDescriptor& output, const QVariantMap&) {
        if (query.contains(QStringLiteral("<file:///home/me/%E2%82%AC%20%22%3Bx%3B.xlsx>"))) {
            const qint32 row[] = {1, 1, qint32(text.isEmpty() ? 900 : text.size())};
            const QByteArray bytes = QByteArray(reinterpret_cast<const char*>(row), sizeof row) + text + '\0';
            EXPECT_EQ(write(output.fileDescriptor(), bytes.constData(), std::size_t(bytes.size())), bytes.size());
        }
        return {QStringLiteral("text")};
    }
};

std::optional<QString> indexed(const QString& path) {
    QFutureWatcher<std::optional<QString>> watcher;
    QSignalSpy finished(&watcher, &QFutureWatcherBase::finished);
    watcher.setFuture(QtConcurrent::run(SpotlightTextExtractor::indexedText, path));
    EXPECT_TRUE(finished.count() == 1 || finished.wait(30'000));
    return watcher.result();
}

} // namespace

TEST(SpotlightTextExtractor, asksTheServiceOfTheDesktop) {
    QProcess daemon;
    daemon.start(QStringLiteral("dbus-daemon"),
                 {QStringLiteral("--session"), QStringLiteral("--nofork"), QStringLiteral("--print-address")});
    ASSERT_TRUE(daemon.waitForReadyRead());
    const QString address = QString::fromLatin1(daemon.readLine()).trimmed();
    qputenv("DBUS_SESSION_BUS_ADDRESS", address.toLatin1());
    const QString known = QStringLiteral("/home/me/€ \";x;.xlsx");
    EXPECT_EQ(indexed(known), std::nullopt); // no service

    SearchService service;
    QDBusConnection bus = QDBusConnection::connectToBus(address, QStringLiteral("search"));
    ASSERT_TRUE(bus.registerObject(QStringLiteral("/org/freedesktop/Tracker3/Endpoint"), &service,
                                   QDBusConnection::ExportAllSlots));
    ASSERT_TRUE(bus.registerService(QStringLiteral("org.freedesktop.Tracker3.Miner.Files")));
    service.text = " Größe\n und Maß \n";
    EXPECT_EQ(indexed(known), QStringLiteral("Größe\n und Maß"));
    EXPECT_EQ(indexed(QStringLiteral("/home/me/other.xlsx")), std::nullopt);
    for (const QByteArray& nothing : {QByteArray(" \n\t"), QByteArray()}) {
        service.text = nothing;
        EXPECT_EQ(indexed(known), std::nullopt);
    }
    QDBusConnection::disconnectFromBus(QStringLiteral("search"));
    daemon.kill();
    daemon.waitForFinished();
    EXPECT_EQ(indexed(known), std::nullopt); // no bus
}

#include "SpotlightTextExtractorTest.moc"
