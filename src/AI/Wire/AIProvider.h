#pragma once

#include "AIAgentTurn.h"
#include "AIMessage.h"
#include "AIModelPreference.h"
#include "AssistantTool.h"

#include <QCoroTask>
#include <QString>

#include <vector>

/// Access to a language model. It remembers nothing of a conversation: the whole history goes in on every call.
class AIProvider {
public:
    AIProvider() = default;
    virtual ~AIProvider() = default;
    Q_DISABLE_COPY_MOVE(AIProvider)

    /// Asks the model for its next turn; no tool is run. `history` is oldest first, without a system message; `tools`
    /// may be empty; `system` is the system prompt.
    ///
    /// Called on the main thread, where the task goes on when the reply is there; the main thread doesn't wait. Several
    /// calls may run at once, and a call goes on to its end when its provider or its task is gone. The task throws
    /// AIProviderError, or the error of the connection or of the JSON parser; the `what()` of each is the user's
    /// sentence.
    virtual QCoro::Task<AIAgentTurn> send(std::vector<AIMessage> history, std::vector<AssistantTool> tools,
                                          QString system, AIModelPreference preference) = 0;
};
