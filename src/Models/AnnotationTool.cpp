#include "AnnotationTool.h"

#include "EnumerationTable.h"

std::span<const AnnotationToolInfo> allAnnotationTools() {
    using enum AnnotationTool;
    static const AnnotationToolInfo tools[] = {
        {select, QStringLiteral("select"), QStringLiteral("Select"), QStringLiteral("cursorarrow"),
         QStringLiteral("1")},
        {ink, QStringLiteral("ink"), QStringLiteral("Draw"), QStringLiteral("pencil.tip"), QStringLiteral("2")},
        {rectangle, QStringLiteral("rectangle"), QStringLiteral("Rectangle"), QStringLiteral("rectangle"),
         QStringLiteral("3")},
        {oval, QStringLiteral("oval"), QStringLiteral("Oval"), QStringLiteral("circle"), QStringLiteral("4")},
        {line, QStringLiteral("line"), QStringLiteral("Line"), QStringLiteral("line.diagonal"), QStringLiteral("5")},
        {textBox, QStringLiteral("textBox"), QStringLiteral("Text Box"), QStringLiteral("textformat"),
         QStringLiteral("6")},
        {note, QStringLiteral("note"), QStringLiteral("Note"), QStringLiteral("note.text"), QStringLiteral("7")},
        {eraser, QStringLiteral("eraser"), QStringLiteral("Eraser"), QStringLiteral("eraser"), QStringLiteral("8")},
        {signature, QStringLiteral("signature"), QStringLiteral("Sign"), QStringLiteral("signature"),
         QStringLiteral("9")},
        {redact, QStringLiteral("redact"), QStringLiteral("Redact"), QStringLiteral("eye.slash"), QStringLiteral("r")},
        {form, QStringLiteral("form"), QStringLiteral("Form Field"), QStringLiteral("checklist"), QStringLiteral("f")},
    };
    return tools;
}

const AnnotationToolInfo& info(AnnotationTool tool) {
    return EnumerationTable::row(allAnnotationTools(), &AnnotationToolInfo::tool, tool);
}

std::optional<AnnotationTool> annotationToolFromRawValue(QStringView rawValue) {
    return EnumerationTable::fromRawValue(allAnnotationTools(), &AnnotationToolInfo::tool, rawValue);
}

QString helpText(AnnotationTool tool, const QString& shortcut) {
    return QStringLiteral("%1 (%2)").arg(info(tool).label, shortcut);
}
