#pragma once

#include <QString>

#include <optional>
#include <span>

/// Which kind of field the form tool places.
enum class FormFieldMode { text, checkbox };

struct FormFieldModeInfo {
    FormFieldMode mode;
    QString rawValue;
    QString title; ///< in the toolbar
};

[[nodiscard]] std::span<const FormFieldModeInfo> allFormFieldModes();
[[nodiscard]] const FormFieldModeInfo& info(FormFieldMode mode);
[[nodiscard]] std::optional<FormFieldMode> formFieldModeFromRawValue(QStringView rawValue);
/// The help text of the choice between the modes.
[[nodiscard]] QString formFieldModeHelpText();
