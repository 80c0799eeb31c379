#include "ColorScheme.h"

#include <QApplication>
#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusVariant>
#include <QPalette>
#include <QProcess>
#include <QTest>

#include <algorithm>

#include <gtest/gtest.h>

namespace {

/// A desktop's settings portal.
class Portal : public QObject {
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.freedesktop.portal.Settings")

public:
    uint colorScheme = 1;

public Q_SLOTS:
    QDBusVariant Read(const QString& group, const QString& key) {
        EXPECT_EQ(group, QStringLiteral("org.freedesktop.appearance"));
        EXPECT_EQ(key, QStringLiteral("color-scheme"));
        return QDBusVariant(QVariant::fromValue(QDBusVariant(colorScheme)));
    }

Q_SIGNALS:
    void SettingChanged(const QString& group, const QString& key, const QDBusVariant& value);
};

/// A message bus of the test's own, with a portal on it.
class Desktop {
public:
    Desktop() {
        m_daemon.start(QStringLiteral("dbus-daemon"),
                       {QStringLiteral("--session"), QStringLiteral("--nofork"), QStringLiteral("--print-address")});
        if (!m_daemon.waitForReadyRead())
            throw std::runtime_error("The tests need dbus-daemon.");
        const QString address = QString::fromLatin1(m_daemon.readLine()).trimmed();
        qputenv("DBUS_SESSION_BUS_ADDRESS", address.toLatin1());
        QDBusConnection bus = QDBusConnection::connectToBus(address, QStringLiteral("portal"));
        EXPECT_TRUE(bus.registerObject(QStringLiteral("/org/freedesktop/portal/desktop"), &portal,
                                       QDBusConnection::ExportAllSlots | QDBusConnection::ExportAllSignals));
        EXPECT_TRUE(bus.registerService(QStringLiteral("org.freedesktop.portal.Desktop")));
    }

    ~Desktop() {
        QDBusConnection::disconnectFromBus(QStringLiteral("portal"));
        QDBusConnection::disconnectFromBus(QDBusConnection::sessionBus().name());
        m_daemon.terminate();
        m_daemon.waitForFinished();
    }

    void choose(uint colorScheme) {
        portal.colorScheme = colorScheme;
        Q_EMIT portal.SettingChanged(QStringLiteral("org.freedesktop.appearance"), QStringLiteral("color-scheme"),
                                     QDBusVariant(colorScheme));
    }

    Portal portal;

private:
    QProcess m_daemon;
};

/// With texts that can be read.
bool isDark(const QPalette& palette) {
    constexpr std::pair<QPalette::ColorRole, QPalette::ColorRole> pairs[] = {
        {QPalette::WindowText, QPalette::Window},
        {QPalette::Text, QPalette::Base},
        {QPalette::PlaceholderText, QPalette::Base},
        {QPalette::HighlightedText, QPalette::Highlight}};
    return std::ranges::all_of(pairs, [&palette](const auto& pair) {
        return palette.color(pair.first).lightness() - palette.color(pair.second).lightness() > 80;
    });
}

} // namespace

TEST(ColorScheme, followsTheDesktopNowAndLater) {
    Desktop desktop;
    const QPalette light = QApplication::palette();
    ASSERT_FALSE(isDark(light));
    ColorScheme scheme;
    scheme.follow();
    EXPECT_TRUE(QTest::qWaitFor([] { return isDark(QApplication::palette()); }));
    desktop.choose(2);
    EXPECT_TRUE(QTest::qWaitFor([&light] { return QApplication::palette() == light; }));
    desktop.choose(1);
    EXPECT_TRUE(QTest::qWaitFor([] { return isDark(QApplication::palette()); }));
    ColorScheme::setDark(false);
    EXPECT_EQ(QApplication::palette(), light);
}

#include "ColorSchemeTest.moc"
