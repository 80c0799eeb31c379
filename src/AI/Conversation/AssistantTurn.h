#pragma once

#include <QString>
#include <QUuid>

#include <optional>

/// One bubble of a chat as the user sees it.
struct AssistantTurn {
    enum class Role {
        user,
        assistant,
        error, ///< shown and stored, never told to the model
    };

    QUuid id = QUuid::createUuid();
    Role role = Role::user;
    QString text;

    bool operator==(const AssistantTurn&) const = default;

    /// "user", "assistant" or "error".
    [[nodiscard]] static QString rawValue(Role role);
    /// None for any other text; letter case counts.
    [[nodiscard]] static std::optional<Role> roleFromRawValue(const QString& rawValue);
};
