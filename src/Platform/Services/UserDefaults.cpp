#include "UserDefaults.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QMutexLocker>
#include <QSettings>
#include <QStandardPaths>

#include <chrono>
#include <limits>
#include <utility>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

using namespace std::chrono_literals;

// The file format itself has no types: a stored `true` reads back as text. So every value is written as JSON, except
// bytes, for which the format has a notation of its own.

static QVariant encoded(const QJsonValue& value) {
    const QByteArray list = QJsonDocument(QJsonArray{value}).toJson(QJsonDocument::Compact);
    return QString::fromUtf8(list.mid(1, list.size() - 2));
}

/// `Undefined` if it is no JSON, and for bytes.
static QJsonValue decoded(const QVariant& stored) {
    if (stored.typeId() != QMetaType::QString)
        return QJsonValue::Undefined;
    const QJsonArray list = QJsonDocument::fromJson('[' + stored.toString().toUtf8() + ']').array();
    return list.size() == 1 ? list.first() : QJsonValue(QJsonValue::Undefined);
}

std::chrono::milliseconds UserDefaults::idleTime = 2s;

UserDefaults::UserDefaults(const QString& filePath, QObject* parent)
    : QObject(parent), m_filePath(filePath), m_writeTimer(this), m_idleTimer(this) {
    m_writeTimer.setInterval(250ms);
    m_idleTimer.setInterval(idleTime);
    for (QTimer* timer : {&m_writeTimer, &m_idleTimer}) {
        timer->setSingleShot(true);
        connect(timer, &QTimer::timeout, this, &UserDefaults::synchronize);
    }
    load();
}

UserDefaults::~UserDefaults() {
    synchronize();
}

QString UserDefaults::standardFilePath(const QString& organizationName, const QString& applicationName) {
    const QDir config(QStandardPaths::writableLocation(QStandardPaths::GenericConfigLocation));
    return config.filePath(organizationName + QLatin1Char('/') + applicationName + QStringLiteral(".ini"));
}

void UserDefaults::load() {
    const QSettings settings(m_filePath, QSettings::IniFormat);
    const QStringList keys = settings.allKeys();
    m_fileIsDamaged = settings.status() == QSettings::FormatError;
    if (m_fileIsDamaged)
        return;
    for (const QString& key : keys)
        m_values.insert(key, settings.value(key));
}

QVariant UserDefaults::storedValue(const QString& key) const {
    const QMutexLocker lock(&m_mutex);
    return m_values.value(key);
}

std::optional<bool> UserDefaults::boolForKey(const QString& key) const {
    const QJsonValue value = decoded(storedValue(key));
    return value.isBool() ? std::optional(value.toBool()) : std::nullopt;
}

std::optional<int> UserDefaults::integerForKey(const QString& key) const {
    constexpr qint64 notAnInteger = std::numeric_limits<qint64>::max();
    const qint64 value = decoded(storedValue(key)).toInteger(notAnInteger);
    return std::in_range<int>(value) ? std::optional(static_cast<int>(value)) : std::nullopt;
}

std::optional<QString> UserDefaults::stringForKey(const QString& key) const {
    const QJsonValue value = decoded(storedValue(key));
    return value.isString() ? std::optional(value.toString()) : std::nullopt;
}

std::optional<QStringList> UserDefaults::stringListForKey(const QString& key) const {
    const QJsonValue value = decoded(storedValue(key));
    if (!value.isArray())
        return std::nullopt;
    QStringList strings;
    for (const auto& each : value.toArray()) {
        if (!each.isString())
            return std::nullopt;
        strings.append(each.toString());
    }
    return strings;
}

std::optional<QByteArray> UserDefaults::dataForKey(const QString& key) const {
    const QVariant value = storedValue(key);
    return value.typeId() == QMetaType::QByteArray ? std::optional(value.toByteArray()) : std::nullopt;
}

std::optional<QVariantMap> UserDefaults::dictionaryForKey(const QString& key) const {
    const QJsonValue value = decoded(storedValue(key));
    return value.isObject() ? std::optional(value.toObject().toVariantMap()) : std::nullopt;
}

void UserDefaults::setBool(const QString& key, bool value) {
    store(key, encoded(value));
}

void UserDefaults::setInteger(const QString& key, int value) {
    store(key, encoded(value));
}

void UserDefaults::setString(const QString& key, const QString& value) {
    store(key, encoded(value));
}

void UserDefaults::setStringList(const QString& key, const QStringList& value) {
    store(key, encoded(QJsonArray::fromStringList(value)));
}

void UserDefaults::setData(const QString& key, const QByteArray& value) {
    store(key, value);
}

void UserDefaults::setDictionary(const QString& key, const QVariantMap& value, Urgency urgency) {
    store(key, encoded(QJsonObject::fromVariantMap(value)), urgency);
}

void UserDefaults::removeObject(const QString& key) {
    store(key, QVariant());
}

bool UserDefaults::contains(const QString& key) const {
    const QMutexLocker lock(&m_mutex);
    return m_values.contains(key);
}

void UserDefaults::store(const QString& key, const QVariant& value, Urgency urgency) {
    const bool canWait = urgency == Urgency::canWait;
    bool mustSchedule = canWait;
    {
        const QMutexLocker lock(&m_mutex);
        if (m_values.value(key) == value)
            return;
        if (value.isValid())
            m_values.insert(key, value);
        else
            m_values.remove(key);
        m_unwrittenKeys.insert(key);
        if (!canWait)
            mustSchedule = !std::exchange(m_writeIsScheduled, true);
    }
    if (mustSchedule)
        QMetaObject::invokeMethod(canWait ? &m_idleTimer : &m_writeTimer, qOverload<>(&QTimer::start));
    Q_EMIT changed(key);
}

bool UserDefaults::synchronize() {
    m_writeTimer.stop();
    m_idleTimer.stop();
    QHash<QString, QVariant> changes;
    {
        const QMutexLocker lock(&m_mutex);
        m_writeIsScheduled = false;
        for (const QString& key : std::exchange(m_unwrittenKeys, {}))
            changes.insert(key, m_values.value(key));
    }
    if (changes.isEmpty() || write(changes))
        return true;
    qWarning("The settings can't be written to %s", qUtf8Printable(m_filePath));
    const QMutexLocker lock(&m_mutex);
    for (auto change = changes.cbegin(); change != changes.cend(); ++change)
        m_unwrittenKeys.insert(change.key());
    return false;
}

/// Writes only `changes`, where an invalid value stands for a removed key, and keeps all else that is in the file.
bool UserDefaults::write(const QHash<QString, QVariant>& changes) {
    if (!prepareFile())
        return false;
    QSettings settings(m_filePath, QSettings::IniFormat);
    for (auto change = changes.cbegin(); change != changes.cend(); ++change) {
        if (change->isValid())
            settings.setValue(change.key(), *change);
        else
            settings.remove(change.key());
    }
    settings.sync();
    return settings.status() == QSettings::NoError;
}

/// Sees to it that there is a file that only the user can read before a value gets into it.
bool UserDefaults::prepareFile() {
    if (!QDir().mkpath(QFileInfo(m_filePath).absolutePath()))
        return false;
    if (std::exchange(m_fileIsDamaged, false)) {
        const QString aside = m_filePath + QStringLiteral(".damaged");
        QFile::remove(aside);
        QFile::rename(m_filePath, aside);
    }
    constexpr mode_t userOnly = S_IRUSR | S_IWUSR;
    const int descriptor = open(QFile::encodeName(m_filePath).constData(), O_WRONLY | O_CREAT | O_CLOEXEC, userOnly);
    if (descriptor < 0)
        return false;
    const bool isPrivate = fchmod(descriptor, userOnly) == 0;
    close(descriptor);
    return isPrivate;
}
