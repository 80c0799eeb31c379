#pragma once

#include <QString>

#include <optional>

class QWidget;

/// The dialog in which the user says where a PDF file is to be saved. Main thread only.
namespace SavePanel {

/// Blocks until the user has answered, starting from `suggestedPath`; whether a file that is there may be replaced has
/// been asked. None when the user gives up, or when `parent` goes meanwhile.
[[nodiscard]] std::optional<QString> choose(QWidget* parent, const QString& suggestedPath);

} // namespace SavePanel
