#pragma once

#include <QString>

#include <optional>
#include <span>

/// What can be done to selected text.
enum class MarkupAction { highlight, underline, strikethrough };

struct MarkupActionInfo {
    MarkupAction action;
    QString rawValue;
    QString title;
    QString symbolName;  ///< of the icon
    QString shortcutKey; ///< pressed with Control and Shift
    QString subtype;     ///< of the annotation that it makes
};

/// Every action once, in the order of the toolbar.
[[nodiscard]] std::span<const MarkupActionInfo> allMarkupActions();
[[nodiscard]] const MarkupActionInfo& info(MarkupAction action);
[[nodiscard]] std::optional<MarkupAction> markupActionFromRawValue(QStringView rawValue);

/// The help text of the action's button; `shortcut` is the keys in the words of the platform.
[[nodiscard]] QString helpText(MarkupAction action, const QString& shortcut);
