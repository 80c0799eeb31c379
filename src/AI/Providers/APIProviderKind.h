#pragma once

#include <QString>

/// The outside services for which the user can have keys: Ollama Cloud, and Groq.
enum class APIProviderKind { ollama, groq };

/// "ollama" or "groq".
[[nodiscard]] QString rawValue(APIProviderKind kind);
