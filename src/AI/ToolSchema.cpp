#include "ToolSchema.h"

#include <QJsonArray>

QJsonObject toolSchema(const std::vector<ToolParameter>& parameters) {
    QJsonObject properties;
    QJsonArray required;
    for (const ToolParameter& parameter : parameters) {
        properties.insert(parameter.name, QJsonObject{{u"type"_qs, parameter.type}});
        if (parameter.isRequired)
            required.append(parameter.name);
    }
    QJsonObject schema{{u"type"_qs, u"object"_qs}, {u"properties"_qs, properties}};
    if (!required.isEmpty())
        schema.insert(u"required"_qs, required);
    return schema;
}
