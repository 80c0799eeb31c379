#include "RecentPageStore.h"

#include "UserDefaults.h"

#include <QUrl>

#include <algorithm>
#include <limits>

static const QString storeKey = QStringLiteral("RecentPageStore.pageIndexByPath");

/// The stored dictionary; empty when it is missing or when any of its values is no whole number.
static QVariantMap storedPageIndices(const UserDefaults& defaults) {
    const QVariantMap stored = defaults.dictionaryForKey(storeKey).value_or(QVariantMap());
    const bool isReadable = std::all_of(stored.begin(), stored.end(), [](const QVariant& value) {
        return value.typeId() == QMetaType::LongLong || value.typeId() == QMetaType::Int;
    });
    return isReadable ? stored : QVariantMap();
}

static QString pathOf(const QUrl& url) {
    return url.path(QUrl::FullyDecoded);
}

std::optional<int> RecentPageStore::pageIndex(const UserDefaults& defaults, const QUrl& url) {
    const QVariantMap indices = storedPageIndices(defaults);
    const auto found = indices.find(pathOf(url));
    if (found == indices.end())
        return std::nullopt;
    const qlonglong index = found->toLongLong();
    constexpr qlonglong maximum = std::numeric_limits<int>::max();
    return index >= -maximum && index <= maximum ? std::optional(static_cast<int>(index)) : std::nullopt;
}

void RecentPageStore::setPageIndex(UserDefaults& defaults, int index, const QUrl& url) {
    QVariantMap indices = storedPageIndices(defaults);
    indices.insert(pathOf(url), static_cast<qlonglong>(index));
    defaults.setDictionary(storeKey, indices);
}
