#include "APIProviderKind.h"

QString rawValue(APIProviderKind kind) {
    return kind == APIProviderKind::ollama ? QStringLiteral("ollama") : QStringLiteral("groq");
}
