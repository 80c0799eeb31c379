#pragma once

#include <QJsonObject>
#include <QString>

#include <vector>

/// One argument of a tool as the model is told of it.
struct ToolParameter {
    QString name;
    QString type; ///< of JSON Schema
    bool isRequired = true;
};

/// The JSON Schema of an input with these arguments.
[[nodiscard]] QJsonObject toolSchema(const std::vector<ToolParameter>& parameters);
