#include "AssistantTurn.h"

#include <QStringList>

namespace {

const QStringList& rawValues() {
    static const QStringList values{QStringLiteral("user"), QStringLiteral("assistant"),
                                    QStringLiteral("error")}; // in the order of the enumeration
    return values;
}

} // namespace

QString AssistantTurn::rawValue(Role role) {
    return rawValues().at(static_cast<int>(role));
}

std::optional<AssistantTurn::Role> AssistantTurn::roleFromRawValue(const QString& rawValue) {
    const auto index = rawValues().indexOf(rawValue);
    return index < 0 ? std::nullopt : std::optional(static_cast<Role>(index));
}
