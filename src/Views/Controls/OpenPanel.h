#pragma once

#include <QStringList>
#include <QUrl>

#include <functional>

class QWidget;

/// The dialog in which the user picks a file to open. Main thread only.
namespace OpenPanel {

/// Shows the panel over the window of `parent` and returns at once. `nameFilters` are the kinds of
/// files on offer, in the words of `QFileDialog`. `chosen` gets the file; it is not called when the
/// user cancels or `parent` is gone. A window has one panel at most: a second call brings the first to the front.
/// It starts in the folder of the file that the window shows (`QWidget::windowFilePath`), if there is one.
void show(QWidget* parent, const QStringList& nameFilters, std::function<void(const QUrl& url)> chosen);

} // namespace OpenPanel
