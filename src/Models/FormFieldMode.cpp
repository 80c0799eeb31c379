#include "FormFieldMode.h"

#include "EnumerationTable.h"

std::span<const FormFieldModeInfo> allFormFieldModes() {
    static const FormFieldModeInfo modes[] = {
        {FormFieldMode::text, QStringLiteral("text"), QStringLiteral("Text Field")},
        {FormFieldMode::checkbox, QStringLiteral("checkbox"), QStringLiteral("Checkbox")},
    };
    return modes;
}

const FormFieldModeInfo& info(FormFieldMode mode) {
    return EnumerationTable::row(allFormFieldModes(), &FormFieldModeInfo::mode, mode);
}

std::optional<FormFieldMode> formFieldModeFromRawValue(QStringView rawValue) {
    return EnumerationTable::fromRawValue(allFormFieldModes(), &FormFieldModeInfo::mode, rawValue);
}

QString formFieldModeHelpText() {
    return QStringLiteral("Drag on the page to place this kind of form field");
}
