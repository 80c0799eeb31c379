#include "ColorScheme.h"

#include "Palette.h"

#include <QApplication>
#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusVariant>
#include <QFutureWatcher>
#include <QPalette>
#include <QStyle>
#include <QtConcurrent>

// The settings portal of the desktop (org.freedesktop.portal.Settings).
static constexpr int answerTimeoutInMilliseconds = 2000;
static constexpr uint preferDark = 1;

static QString portalService() {
    return QStringLiteral("org.freedesktop.portal.Desktop");
}

static QString portalPath() {
    return QStringLiteral("/org/freedesktop/portal/desktop");
}

static QString portalInterface() {
    return QStringLiteral("org.freedesktop.portal.Settings");
}

static QString appearanceGroup() {
    return QStringLiteral("org.freedesktop.appearance");
}

static QString colorSchemeKey() {
    return QStringLiteral("color-scheme");
}

/// Blocks until the desktop has answered; for a background thread. False when there is no answer.
static bool desktopPrefersDark() {
    QDBusConnection bus = QDBusConnection::sessionBus();
    if (!bus.isConnected())
        return false;
    QDBusMessage call =
        QDBusMessage::createMethodCall(portalService(), portalPath(), portalInterface(), QStringLiteral("Read"));
    call << appearanceGroup() << colorSchemeKey();
    const QDBusMessage answer = bus.call(call, QDBus::Block, answerTimeoutInMilliseconds);
    if (answer.type() != QDBusMessage::ReplyMessage || answer.arguments().isEmpty())
        return false;
    // A variant in a variant.
    QVariant value = answer.arguments().constFirst();
    while (value.canConvert<QDBusVariant>())
        value = value.value<QDBusVariant>().variant();
    return value.toUInt() == preferDark;
}

ColorScheme::ColorScheme(QObject* parent) : QObject(parent) {}

ColorScheme::~ColorScheme() = default;

void ColorScheme::follow() {
    const QPalette present = QApplication::palette();
    const bool isDark = present.color(QPalette::Window).lightness() < present.color(QPalette::WindowText).lightness();
    if (!isDark && QApplication::style()->name().compare(QLatin1String("fusion"), Qt::CaseInsensitive) == 0)
        ask();
}

void ColorScheme::ask() {
    auto* watcher = new QFutureWatcher<bool>(this);
    connect(watcher, &QFutureWatcher<bool>::finished, this, [this, watcher] {
        watcher->deleteLater();
        setDark(watcher->result());
        // Connected by now, so this waits for nothing; a second connection of the same slot is refused.
        QDBusConnection::sessionBus().connect(portalService(), portalPath(), portalInterface(),
                                              QStringLiteral("SettingChanged"), this,
                                              SLOT(desktopSettingChanged(QString, QString)));
    });
    watcher->setFuture(QtConcurrent::run(desktopPrefersDark));
}

void ColorScheme::desktopSettingChanged(const QString& group, const QString& key) {
    if (group == appearanceGroup() && key == colorSchemeKey())
        ask();
}

void ColorScheme::setDark(bool dark) {
    // An empty palette brings back that of the style.
    const QPalette palette = dark ? darkPalette() : QPalette();
    if (dark || QApplication::palette().color(QPalette::Window) == darkPalette().color(QPalette::Window))
        QApplication::setPalette(palette);
}

QPalette ColorScheme::darkPalette() {
    const QColor window(0x26, 0x28, 0x2B);
    const QColor base(0x1C, 0x1E, 0x21);
    const QColor text(0xEC, 0xED, 0xEE);
    const QColor faint(0x8A, 0x8D, 0x91);
    const QColor accent = Palette::brandBlue.darker(165);

    QPalette palette(text, QColor(0x36, 0x39, 0x3D), QColor(0x4A, 0x4E, 0x53), QColor(0x14, 0x15, 0x17),
                     QColor(0x2E, 0x31, 0x34), text, Qt::white, base, window);
    palette.setColor(QPalette::AlternateBase, QColor(0x22, 0x24, 0x27));
    palette.setColor(QPalette::Shadow, Qt::black);
    palette.setColor(QPalette::ToolTipBase, QColor(0x36, 0x39, 0x3D));
    palette.setColor(QPalette::ToolTipText, text);
    palette.setColor(QPalette::PlaceholderText, faint);
    palette.setColor(QPalette::Highlight, accent);
    palette.setColor(QPalette::HighlightedText, Qt::white);
    palette.setColor(QPalette::Link, Palette::brandBlue);
    palette.setColor(QPalette::LinkVisited, QColor(0xB8, 0x9A, 0xE8));
    const QColor disabled(0x70, 0x73, 0x77);
    for (const auto role : {QPalette::WindowText, QPalette::Text, QPalette::ButtonText, QPalette::HighlightedText})
        palette.setColor(QPalette::Disabled, role, disabled);
    palette.setColor(QPalette::Disabled, QPalette::Highlight, QColor(0x45, 0x49, 0x4E));
    return palette;
}
