#include "FormFieldMode.h"

#include "EnumerationTable.h"

std::span<const FormFieldModeInfo> allFormFieldModes() {
    static const FormFieldModeInfo modes[] = {
        {FormFieldMode::text, u"text"_qs, u"Text Field"_qs},
        {FormFieldMode::checkbox, u"checkbox"_qs, u"Checkbox"_qs},
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
    return u"Drag on the page to place this kind of form field"_qs;
}
