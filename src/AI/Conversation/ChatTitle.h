#pragma once

#include <QString>

/// Titles of conversations.
namespace ChatTitle {

/// The beginning of the message, at most 42 user-perceived characters and cut between words where there is a blank.
[[nodiscard]] QString fromFirstMessage(const QString& message);

/// What a model is asked for a better one.
[[nodiscard]] QString prompt(const QString& firstMessage);
[[nodiscard]] QString systemPrompt();

} // namespace ChatTitle
