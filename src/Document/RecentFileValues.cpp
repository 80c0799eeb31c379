#include "RecentFileValues.h"

#include "UserDefaults.h"

#include <QUrl>

#include <algorithm>

static QVariantMap stored(const RecentFileValues& values, const UserDefaults& defaults) {
    const QVariantMap all = defaults.dictionaryForKey(values.storeKey).value_or(QVariantMap());
    return std::all_of(all.begin(), all.end(), values.isValue) ? all : QVariantMap();
}

static QString pathOf(const QUrl& url) {
    return url.path(QUrl::FullyDecoded);
}

std::optional<QVariant> RecentFileValues::value(const UserDefaults& defaults, const QUrl& url) const {
    const QVariantMap all = stored(*this, defaults);
    const auto found = all.find(pathOf(url));
    return found == all.end() ? std::nullopt : std::optional(*found);
}

void RecentFileValues::setValue(UserDefaults& defaults, const QUrl& url, const QVariant& value) const {
    QVariantMap all = stored(*this, defaults);
    all.insert(pathOf(url), value);
    defaults.setDictionary(storeKey, all, UserDefaults::Urgency::canWait); // a page is turned every second
}

void RecentFileValues::removeValue(UserDefaults& defaults, const QUrl& url) const {
    QVariantMap all = stored(*this, defaults);
    if (all.remove(pathOf(url)) > 0)
        defaults.setDictionary(storeKey, all, UserDefaults::Urgency::canWait);
}

void RecentFileValues::clear(UserDefaults& defaults) const {
    defaults.removeObject(storeKey);
}
