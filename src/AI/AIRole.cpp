#include "AIRole.h"

QString rawValue(AIRole role) {
    return role == AIRole::user ? u"user"_qs : u"assistant"_qs;
}
