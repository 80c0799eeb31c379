#pragma once

#include <QString>

/// Who speaks in a message of the model's history. The system prompt is no message, and the results of tools travel in
/// a message of the user.
enum class AIRole { user, assistant };

/// "user" or "assistant".
[[nodiscard]] QString rawValue(AIRole role);
