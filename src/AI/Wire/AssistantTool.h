#pragma once

#include <QCoroTask>
#include <QJsonObject>
#include <QString>

#include <functional>

/// A function that the model may call by its name.
struct AssistantTool {
    QString name;
    QString description;
    QJsonObject inputSchema; ///< JSON Schema of the input

    /// Main thread. Never throws: whatever goes wrong is told in the text, for the model to read.
    std::function<QString(const QJsonObject& input)> execute;

    /// Does the slow part of such a call on another thread, so that `execute` with the same input answers at once.
    /// Changes nothing that anyone could notice but the time. Empty for a tool that is always quick. Main thread.
    std::function<QCoro::Task<void>(QJsonObject input)> prepare = {};
};
