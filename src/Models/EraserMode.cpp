#include "EraserMode.h"

#include "EnumerationTable.h"

std::span<const EraserModeInfo> allEraserModes() {
    static const EraserModeInfo modes[] = {
        {EraserMode::wholeStroke, u"wholeStroke"_qs, u"Line"_qs},
        {EraserMode::precise, u"precise"_qs, u"Precise"_qs},
    };
    return modes;
}

const EraserModeInfo& info(EraserMode mode) {
    return EnumerationTable::row(allEraserModes(), &EraserModeInfo::mode, mode);
}

std::optional<EraserMode> eraserModeFromRawValue(QStringView rawValue) {
    return EnumerationTable::fromRawValue(allEraserModes(), &EraserModeInfo::mode, rawValue);
}

QString eraserModeHelpText() {
    return u"Line erases the whole stroke it touches; Precise erases only the part it passes over"_qs;
}
