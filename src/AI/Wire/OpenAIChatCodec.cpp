#include "OpenAIChatCodec.h"

#include "AIProviderError.h"
#include "JSONParsingError.h"

#include <QJsonDocument>
#include <QStringList>

#include <algorithm>
#include <optional>
#include <utility>

namespace {

QJsonObject encodeToolUse(const AIContentPart::ToolUse& toolUse) {
    const QByteArray arguments = QJsonDocument(toolUse.input).toJson(QJsonDocument::Compact);
    const QJsonObject function{{QStringLiteral("name"), toolUse.name},
                               {QStringLiteral("arguments"), QString::fromUtf8(arguments)}};
    return {{QStringLiteral("id"), toolUse.id},
            {QStringLiteral("type"), QStringLiteral("function")},
            {QStringLiteral("function"), function}};
}

QJsonObject encodeAssistantMessage(const AIMessage& message) {
    QString content;
    QJsonArray toolCalls;
    for (const AIContentPart& part : message.parts) {
        if (const auto* text = part.asText())
            content += text->text;
        else if (const auto* toolUse = part.asToolUse())
            toolCalls.append(encodeToolUse(*toolUse));
    }
    QJsonObject encoded{{QStringLiteral("role"), rawValue(message.role)}, {QStringLiteral("content"), content}};
    if (!toolCalls.isEmpty())
        encoded.insert(QStringLiteral("tool_calls"), toolCalls);
    return encoded;
}

/// One message for each result of a tool, or else one with the text.
void appendUserMessages(QJsonArray& messages, const AIMessage& message) {
    QStringList texts;
    bool hasToolResults = false;
    for (const AIContentPart& part : message.parts) {
        if (const auto* text = part.asText()) {
            texts.append(text->text);
        } else if (const auto* result = part.asToolResult()) {
            hasToolResults = true;
            messages.append(QJsonObject{{QStringLiteral("role"), QStringLiteral("tool")},
                                        {QStringLiteral("tool_call_id"), result->id},
                                        {QStringLiteral("content"), result->content}});
        }
    }
    if (!hasToolResults) {
        messages.append(QJsonObject{{QStringLiteral("role"), rawValue(message.role)},
                                    {QStringLiteral("content"), texts.join(QLatin1Char('\n'))}});
    }
}

/// None unless `value` is an array of nothing but objects.
std::optional<std::vector<QJsonObject>> objectsOf(const QJsonValue& value) {
    if (!value.isArray())
        return std::nullopt;
    const QJsonArray array = value.toArray();
    std::vector<QJsonObject> objects;
    for (const auto& each : array) {
        if (!each.isObject())
            return std::nullopt;
        objects.push_back(each.toObject());
    }
    return objects;
}

QJsonObject decodeArguments(const QJsonValue& arguments) {
    if (arguments.isString())
        return QJsonDocument::fromJson(arguments.toString().toUtf8()).object();
    return arguments.toObject(); // some services send it unwrapped
}

std::vector<AIToolCall> decodeToolCalls(const QJsonValue& value) {
    std::vector<AIToolCall> toolCalls;
    const auto entries = objectsOf(value);
    if (!entries)
        return toolCalls;
    for (const QJsonObject& entry : *entries) {
        const QJsonValue id = entry.value(u"id");
        const QJsonObject function = entry.value(u"function").toObject();
        const QJsonValue name = function.value(u"name");
        if (id.isString() && name.isString())
            toolCalls.push_back({id.toString(), name.toString(), decodeArguments(function.value(u"arguments"))});
    }
    return toolCalls;
}

QString errorMessage(const QJsonObject& reply) {
    const QJsonValue error = reply.value(u"error");
    const QJsonValue message = error.toObject().value(u"message");
    if (message.isString())
        return message.toString();
    return error.isString() ? error.toString() : QStringLiteral("Unknown error");
}

/// Throws JSONParsingError. None for JSON that is no object.
std::optional<QJsonObject> parseObject(const QByteArray& body) {
    QJsonParseError error;
    const QJsonDocument document = QJsonDocument::fromJson(body, &error);
    if (error.error == QJsonParseError::NoError)
        return document.isObject() ? std::optional(document.object()) : std::nullopt;
    // Qt's parser takes no single string, number or the like for a document; as the only element of a list it does.
    if (error.error == QJsonParseError::IllegalValue && QJsonDocument::fromJson('[' + body + ']').array().size() == 1)
        return std::nullopt;
    throw JSONParsingError(error);
}

} // namespace

QJsonArray OpenAIChatCodec::encodeMessages(const std::vector<AIMessage>& history, const QString& system) {
    QJsonArray messages{
        QJsonObject{{QStringLiteral("role"), QStringLiteral("system")}, {QStringLiteral("content"), system}}};
    for (const AIMessage& message : history) {
        if (message.role == AIRole::assistant)
            messages.append(encodeAssistantMessage(message));
        else
            appendUserMessages(messages, message);
    }
    return messages;
}

QJsonArray OpenAIChatCodec::encodeToolSpecs(const std::vector<AssistantTool>& tools) {
    QJsonArray specs;
    for (const AssistantTool& tool : tools) {
        const QJsonObject function{{QStringLiteral("name"), tool.name},
                                   {QStringLiteral("description"), tool.description},
                                   {QStringLiteral("parameters"), tool.inputSchema}};
        specs.append(
            QJsonObject{{QStringLiteral("type"), QStringLiteral("function")}, {QStringLiteral("function"), function}});
    }
    return specs;
}

AIAgentTurn OpenAIChatCodec::decodeResponse(const QJsonObject& response) {
    const auto choices = objectsOf(response.value(u"choices"));
    if (!choices || choices->empty() || !choices->front().value(u"message").isObject())
        throw AIProviderError::malformedResponse();
    const QJsonObject message = choices->front().value(u"message").toObject();

    AIAgentTurn turn;
    turn.message.role = AIRole::assistant;
    turn.text = message.value(u"content").toString();
    if (!turn.text.isEmpty())
        turn.message.parts.push_back(AIContentPart::text(turn.text));
    turn.toolCalls = decodeToolCalls(message.value(u"tool_calls"));
    for (const AIToolCall& call : turn.toolCalls)
        turn.message.parts.push_back(AIContentPart::toolUse(call.id, call.name, call.input));
    turn.isFinal = turn.toolCalls.empty() || choices->front().value(u"finish_reason").toString() != u"tool_calls";
    return turn;
}

AIAgentTurn OpenAIChatCodec::readReply(int status, const QByteArray& body) {
    const auto reply = parseObject(body);
    if (!reply)
        throw AIProviderError::malformedResponse();
    if (status < 200 || status > 299)
        throw AIProviderError::http(status, errorMessage(*reply));
    return decodeResponse(*reply);
}
