#include "ToolSchema.h"

#include <QJsonArray>

QJsonObject toolSchema(const std::vector<ToolParameter>& parameters) {
    QJsonObject properties;
    QJsonArray required;
    for (const ToolParameter& parameter : parameters) {
        properties.insert(parameter.name, QJsonObject{{QStringLiteral("type"), parameter.type}});
        if (parameter.isRequired)
            required.append(parameter.name);
    }
    QJsonObject schema{{QStringLiteral("type"), QStringLiteral("object")}, {QStringLiteral("properties"), properties}};
    if (!required.isEmpty())
        schema.insert(QStringLiteral("required"), required);
    return schema;
}
