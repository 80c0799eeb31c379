#pragma once

#include <QList>
#include <QString>
#include <QUrl>

#include <memory>
#include <optional>
#include <vector>

class PDFSource;
class QMimeData;
class QWidget;

/// The files that page commands read and write, and the dialogs that ask for them. The dialogs block until they are
/// answered; none, or an empty list, when the user gives up or the window goes meanwhile. Main thread, but for `read`.
namespace PageFiles {

[[nodiscard]] std::optional<QUrl> runOpenPanel(QWidget* parent);
[[nodiscard]] QList<QUrl> runMultiOpenPanel(QWidget* parent);
/// The path of a folder.
[[nodiscard]] std::optional<QString> runFolderPanel(QWidget* parent);

/// The PDF files among what is dragged.
[[nodiscard]] QList<QUrl> pdfFiles(const QMimeData& data);

/// Null when it can't be read as a PDF file. Any thread; takes as long as the disk.
[[nodiscard]] std::shared_ptr<PDFSource> read(const QUrl& url);

} // namespace PageFiles
