#include "EraserMode.h"

#include "EnumerationTable.h"

std::span<const EraserModeInfo> allEraserModes() {
    static const EraserModeInfo modes[] = {
        {EraserMode::wholeStroke, QStringLiteral("wholeStroke"), QStringLiteral("Line")},
        {EraserMode::precise, QStringLiteral("precise"), QStringLiteral("Precise")},
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
    return QStringLiteral("Line erases the whole stroke it touches; Precise erases only the part it passes over");
}
