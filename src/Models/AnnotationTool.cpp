#include "AnnotationTool.h"

#include "EnumerationTable.h"

std::span<const AnnotationToolInfo> allAnnotationTools() {
    using enum AnnotationTool;
    static const AnnotationToolInfo tools[] = {
        {select, u"select"_qs, u"Select"_qs, u"cursorarrow"_qs, u"1"_qs},
        {ink, u"ink"_qs, u"Draw"_qs, u"pencil.tip"_qs, u"2"_qs},
        {rectangle, u"rectangle"_qs, u"Rectangle"_qs, u"rectangle"_qs, u"3"_qs},
        {oval, u"oval"_qs, u"Oval"_qs, u"circle"_qs, u"4"_qs},
        {line, u"line"_qs, u"Line"_qs, u"line.diagonal"_qs, u"5"_qs},
        {textBox, u"textBox"_qs, u"Text Box"_qs, u"textformat"_qs, u"6"_qs},
        {note, u"note"_qs, u"Note"_qs, u"note.text"_qs, u"7"_qs},
        {eraser, u"eraser"_qs, u"Eraser"_qs, u"eraser"_qs, u"8"_qs},
        {signature, u"signature"_qs, u"Sign"_qs, u"signature"_qs, u"9"_qs},
        {redact, u"redact"_qs, u"Redact"_qs, u"eye.slash"_qs, u"r"_qs},
        {form, u"form"_qs, u"Form Field"_qs, u"checklist"_qs, u"f"_qs},
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
    return u"%1 (%2)"_qs.arg(info(tool).label, shortcut);
}
