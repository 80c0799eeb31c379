#pragma once

#include <QJsonObject>
#include <QString>

/// A tool that the model wants to be run.
struct AIToolCall {
    QString id; ///< which the result must repeat
    QString name;
    QJsonObject input;

    friend bool operator==(const AIToolCall&, const AIToolCall&) = default;
};
