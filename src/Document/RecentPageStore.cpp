#include "RecentPageStore.h"

#include "RecentFileValues.h"

#include <limits>

static const RecentFileValues& pageIndices() {
    static const RecentFileValues values = {
        QStringLiteral("RecentPageStore.pageIndexByPath"), [](const QVariant& value) {
            return value.typeId() == QMetaType::LongLong || value.typeId() == QMetaType::Int;
        }};
    return values;
}

std::optional<int> RecentPageStore::pageIndex(const UserDefaults& defaults, const QUrl& url) {
    const std::optional<QVariant> stored = pageIndices().value(defaults, url);
    if (!stored)
        return std::nullopt;
    const qlonglong index = stored->toLongLong();
    constexpr qlonglong maximum = std::numeric_limits<int>::max();
    return index >= -maximum && index <= maximum ? std::optional(static_cast<int>(index)) : std::nullopt;
}

void RecentPageStore::setPageIndex(UserDefaults& defaults, int index, const QUrl& url) {
    pageIndices().setValue(defaults, url, static_cast<qlonglong>(index));
}

void RecentPageStore::clear(UserDefaults& defaults) {
    pageIndices().clear(defaults);
}
