#pragma once

#include <QString>

#include <optional>
#include <span>

/// What the eraser removes: every stroke that it touches, or only the part that it passes over.
enum class EraserMode { wholeStroke, precise };

struct EraserModeInfo {
    EraserMode mode;
    QString rawValue;
    QString title; ///< in the toolbar
};

[[nodiscard]] std::span<const EraserModeInfo> allEraserModes();
[[nodiscard]] const EraserModeInfo& info(EraserMode mode);
[[nodiscard]] std::optional<EraserMode> eraserModeFromRawValue(QStringView rawValue);
/// The help text of the choice between the modes.
[[nodiscard]] QString eraserModeHelpText();
