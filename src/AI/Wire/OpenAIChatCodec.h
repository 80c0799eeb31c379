#pragma once

#include "AIAgentTurn.h"
#include "AIMessage.h"
#include "AssistantTool.h"

#include <QByteArray>
#include <QJsonArray>
#include <QJsonObject>

#include <vector>

/// Translates to and from the JSON of the chat-completions format. This is the only place that knows it.
///
/// Objects are written with their keys in alphabetical order, without blanks, as UTF-8: the same values give the same
/// bytes. Any thread.
namespace OpenAIChatCodec {

/// The system prompt, also an empty one, and then the history. A message can become several: each result of a tool is
/// one of its own.
[[nodiscard]] QJsonArray encodeMessages(const std::vector<AIMessage>& history, const QString& system);

[[nodiscard]] QJsonArray encodeToolSpecs(const std::vector<AssistantTool>& tools);

/// Reads the first choice of a reply. Tool calls without an id or a name are passed over; unreadable arguments count as
/// none. Calls of a reply that doesn't end for their sake stay in the message, but the turn is final. Throws
/// AIProviderError when the reply has no choice with a message.
[[nodiscard]] AIAgentTurn decodeResponse(const QJsonObject& response);

/// Reads the body of a reply of any status (-1 for one that isn't of HTTP). Throws JSONParsingError, whatever the
/// status, for a body that is no JSON, and AIProviderError for one that isn't an object or for a status outside 200 to
/// 299.
[[nodiscard]] AIAgentTurn readReply(int status, const QByteArray& body);

} // namespace OpenAIChatCodec
