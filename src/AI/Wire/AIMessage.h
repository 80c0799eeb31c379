#pragma once

#include "AIContentPart.h"
#include "AIRole.h"

#include <vector>

/// One message of the history that the model reads. A message without parts is valid.
struct AIMessage {
    AIRole role = AIRole::user;
    std::vector<AIContentPart> parts;

    /// A message of the user with a single part.
    [[nodiscard]] static AIMessage userText(QString text);

    friend bool operator==(const AIMessage&, const AIMessage&) = default;
};
