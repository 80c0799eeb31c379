#pragma once

#include <QJsonObject>
#include <QString>

#include <variant>

/// One part of a message: exactly one of plain text, a tool call that the model asks for, and the outcome of one.
struct AIContentPart {
    struct Text {
        QString text;
        friend bool operator==(const Text&, const Text&) = default;
    };
    struct ToolUse {
        QString id;
        QString name;
        QJsonObject input;
        friend bool operator==(const ToolUse&, const ToolUse&) = default;
    };
    struct ToolResult {
        QString id; ///< of the tool use that it answers
        QString content;
        friend bool operator==(const ToolResult&, const ToolResult&) = default;
    };

    std::variant<Text, ToolUse, ToolResult> value;

    [[nodiscard]] static AIContentPart text(QString text);
    [[nodiscard]] static AIContentPart toolUse(QString id, QString name, QJsonObject input);
    [[nodiscard]] static AIContentPart toolResult(QString id, QString content);

    /// Null if the part is of another kind.
    [[nodiscard]] const Text* asText() const { return std::get_if<Text>(&value); }
    [[nodiscard]] const ToolUse* asToolUse() const { return std::get_if<ToolUse>(&value); }
    [[nodiscard]] const ToolResult* asToolResult() const { return std::get_if<ToolResult>(&value); }

    friend bool operator==(const AIContentPart&, const AIContentPart&) = default;
};
