#pragma once

#include "AIAgentTurn.h"
#include "URLSession.h"

#include <QCoroTask>

#include <functional>
#include <memory>

/// One question to a chat-completions service and its answer, which is what all providers have in common.
namespace ChatRequest {

/// Posts what `makeRequest` returns and reads the reply as OpenAIChatCodec tells. Main thread; making the request and
/// reading the reply, which may be long, is done on another. Throws what `makeRequest`, the session and the codec
/// throw.
[[nodiscard]] QCoro::Task<AIAgentTurn> send(std::shared_ptr<URLSession> session,
                                            std::function<URLRequest()> makeRequest);

} // namespace ChatRequest
