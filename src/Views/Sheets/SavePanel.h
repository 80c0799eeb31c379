#pragma once

#include <QString>

#include <optional>

class QWidget;
class UserDefaults;

/// The dialog in which the user says where a PDF file is to be saved. Main thread only.
namespace SavePanel {

/// Blocks until the user has answered, starting from `suggestedPath`; whether a file that is there may be replaced has
/// been asked. None when the user gives up, or when `parent` goes meanwhile.
/// The name ends with ".pdf".
[[nodiscard]] std::optional<QString> choose(QWidget* parent, const QString& suggestedPath);

/// The same for a copy of the document in the window of `parent`, whose own file (`QWidget::windowFilePath`) is
/// refused. Starts in the folder of the last copy, or else in `startFolder`.
[[nodiscard]] std::optional<QString> chooseForCopy(QWidget* parent, const QString& suggestedName);

/// A copy has been stored at `path`.
void noteCopy(const QString& path);

/// Keeps the folder of the last copy in the settings, and takes it from there; otherwise it is known as long as the
/// program runs.
void rememberIn(UserDefaults& defaults);

/// Where panels for the document in the window of `parent` begin: the folder of its file; for a document without one,
/// where documents are.
[[nodiscard]] QString startFolder(const QWidget* parent);

} // namespace SavePanel
