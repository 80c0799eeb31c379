#pragma once

#include <QHash>
#include <QMutex>
#include <QObject>
#include <QSet>
#include <QStringList>
#include <QTimer>
#include <QVariantMap>

#include <chrono>
#include <optional>

/// The settings of one user: named values in a text file that only this user can read (mode 0600).
///
/// The file is read once, when the object is made; a damaged or unreadable file counts as empty. A change is written
/// at the latest a quarter of a second later, together with all others made until then, and safely on the disk before
/// the object is gone. One that can wait is written with the next that can't, or when none has come for two seconds.
/// Values that other programs wrote under other keys meanwhile are kept.
///
/// Keys are case-sensitive and contain no slash or backslash. Values may be read and set on any thread. `changed` is
/// emitted on the thread that made the change.
class UserDefaults : public QObject {
    Q_OBJECT

public:
    enum class Urgency { soon, canWait };

    /// After which a change that can wait is written when no other has come. Tests, which don't depend on time, set it
    /// otherwise.
    static std::chrono::milliseconds idleTime;

    /// The folder of `filePath` is made on the first write.
    explicit UserDefaults(const QString& filePath, QObject* parent = nullptr);
    ~UserDefaults() override;

    /// `<config folder>/<organization>/<application>.ini`, the config folder being that of the XDG base directories.
    static QString standardFilePath(const QString& organizationName, const QString& applicationName);

    QString filePath() const { return m_filePath; }

    /// None if the key is missing or holds a value of another type.
    std::optional<bool> boolForKey(const QString& key) const;
    std::optional<int> integerForKey(const QString& key) const;
    std::optional<QString> stringForKey(const QString& key) const;
    std::optional<QStringList> stringListForKey(const QString& key) const;
    std::optional<QByteArray> dataForKey(const QString& key) const;
    /// Whole numbers inside come back as `qlonglong`, others as `double`.
    std::optional<QVariantMap> dictionaryForKey(const QString& key) const;

    void setBool(const QString& key, bool value);
    void setInteger(const QString& key, int value);
    void setString(const QString& key, const QString& value);
    void setStringList(const QString& key, const QStringList& value);
    void setData(const QString& key, const QByteArray& value);
    /// Inside may be Booleans, numbers, strings, lists and further dictionaries.
    void setDictionary(const QString& key, const QVariantMap& value, Urgency urgency = Urgency::soon);

    void removeObject(const QString& key);
    bool contains(const QString& key) const;

    /// Writes what is not yet written. False if the file can't be written; the changes then stay in memory and go
    /// with the next write. Only on the thread of this object.
    bool synchronize();

Q_SIGNALS:
    /// The value of `key` is another one than before, or gone.
    void changed(const QString& key);

private:
    void load();
    void store(const QString& key, const QVariant& value, Urgency urgency = Urgency::soon);
    QVariant storedValue(const QString& key) const;
    bool write(const QHash<QString, QVariant>& changes);
    bool prepareFile();

    const QString m_filePath;
    mutable QMutex m_mutex;
    /// Guarded by `m_mutex`: values as they are written to the file, and the keys that the file does not have yet.
    QHash<QString, QVariant> m_values;
    QSet<QString> m_unwrittenKeys;
    bool m_writeIsScheduled = false;

    bool m_fileIsDamaged = false;
    QTimer m_writeTimer;
    QTimer m_idleTimer; ///< starts anew with each change that can wait
};
