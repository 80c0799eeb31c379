#include "AIRole.h"

QString rawValue(AIRole role) {
    return role == AIRole::user ? QStringLiteral("user") : QStringLiteral("assistant");
}
