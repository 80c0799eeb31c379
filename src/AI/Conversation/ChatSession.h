#pragma once

#include "AssistantTurn.h"

#include <QDateTime>
#include <QString>
#include <QUuid>

#include <vector>

/// One conversation about a document.
struct ChatSession {
    /// The title until the first question gives another.
    [[nodiscard]] static QString defaultTitle() { return QStringLiteral("New Chat"); }

    QUuid id = QUuid::createUuid();
    QString title = defaultTitle();
    std::vector<AssistantTurn> turns;                      ///< oldest first
    QDateTime updatedAt = QDateTime::currentDateTimeUtc(); ///< when it was last taken over for saving

    bool operator==(const ChatSession&) const = default;
};
