#include "APIProviderKind.h"

QString rawValue(APIProviderKind kind) {
    return kind == APIProviderKind::ollama ? u"ollama"_qs : u"groq"_qs;
}
