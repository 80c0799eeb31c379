#pragma once

#include <QString>

/// What the model is told before a conversation.
namespace SystemPrompts {

[[nodiscard]] QString pdf();

/// For a document of which there is only text: the rules for a PDF, and what of them doesn't hold.
[[nodiscard]] QString textOnly();

} // namespace SystemPrompts
