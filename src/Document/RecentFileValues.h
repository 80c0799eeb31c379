#pragma once

#include <QString>
#include <QVariant>

#include <optional>

class QUrl;
class UserDefaults;

/// A dictionary in the settings that keeps one value for each file, by the file's path. Entries are kept for good; a
/// moved file starts anew.
struct RecentFileValues {
    QString storeKey;
    /// What a value may be. A store with any other counts as empty, and is replaced when it is written to.
    bool (*isValue)(const QVariant& value);

    [[nodiscard]] std::optional<QVariant> value(const UserDefaults& defaults, const QUrl& url) const;
    void setValue(UserDefaults& defaults, const QUrl& url, const QVariant& value) const;
    void removeValue(UserDefaults& defaults, const QUrl& url) const;
    void clear(UserDefaults& defaults) const;
};
