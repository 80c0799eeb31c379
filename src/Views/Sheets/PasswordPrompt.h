#pragma once

#include <QString>

#include <optional>

class QWidget;

/// The modal question for the password of a PDF that is being opened.
namespace PasswordPrompt {

/// Blocks until the user has answered. None when the user gives up, or when `parent` goes meanwhile.
[[nodiscard]] std::optional<QString> ask(QWidget* parent);

} // namespace PasswordPrompt
