#pragma once

#include "AIMessage.h"
#include "AIToolCall.h"

#include <QString>

#include <vector>

/// What one call of the model brought.
struct AIAgentTurn {
    AIMessage message;                 ///< the reply as history; its role is always the assistant's
    std::vector<AIToolCall> toolCalls; ///< the same as the tool uses of `message`, in their order
    QString text;                      ///< empty when the reply had none
    bool isFinal = true; ///< `text` is the answer; else `toolCalls` are to be run and the model called again
};
