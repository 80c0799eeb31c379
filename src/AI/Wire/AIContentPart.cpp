#include "AIContentPart.h"

#include <utility>

AIContentPart AIContentPart::text(QString text) {
    return {Text{std::move(text)}};
}

AIContentPart AIContentPart::toolUse(QString id, QString name, QJsonObject input) {
    return {ToolUse{std::move(id), std::move(name), std::move(input)}};
}

AIContentPart AIContentPart::toolResult(QString id, QString content) {
    return {ToolResult{std::move(id), std::move(content)}};
}
