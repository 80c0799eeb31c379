#include "RecentScaleStore.h"

#include "RecentFileValues.h"

#include <cmath>

static const RecentFileValues& scales() {
    static const RecentFileValues values = {QStringLiteral("RecentScaleStore.scaleByPath"),
                                            [](const QVariant& value) { return value.canConvert<double>(); }};
    return values;
}

std::optional<double> RecentScaleStore::scale(const UserDefaults& defaults, const QUrl& url) {
    const double scale = scales().value(defaults, url).value_or(0).toDouble();
    return std::isfinite(scale) && scale > 0 ? std::optional(scale) : std::nullopt;
}

void RecentScaleStore::setScale(UserDefaults& defaults, std::optional<double> scale, const QUrl& url) {
    if (scale)
        scales().setValue(defaults, url, *scale);
    else
        scales().removeValue(defaults, url);
}

void RecentScaleStore::clear(UserDefaults& defaults) {
    scales().clear(defaults);
}
