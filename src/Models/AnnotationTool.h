#pragma once

#include <QString>

#include <optional>
#include <span>

/// What the pointer does on the page.
enum class AnnotationTool { select, ink, rectangle, oval, line, textBox, note, eraser, signature, redact, form };

/// What is fixed for each tool.
struct AnnotationToolInfo {
    AnnotationTool tool;
    QString rawValue;
    QString label;       ///< for the toolbar and the notice of a tool switch
    QString symbolName;  ///< of the icon
    QString shortcutKey; ///< pressed with Control alone
};

/// Every tool once, in the order of the toolbar and of the keys.
[[nodiscard]] std::span<const AnnotationToolInfo> allAnnotationTools();
[[nodiscard]] const AnnotationToolInfo& info(AnnotationTool tool);
/// None when no tool has that raw value; letter case counts.
[[nodiscard]] std::optional<AnnotationTool> annotationToolFromRawValue(QStringView rawValue);

/// The help text of the tool's button: its label, and `shortcut` (the keys in the words of the platform) in brackets.
[[nodiscard]] QString helpText(AnnotationTool tool, const QString& shortcut);
