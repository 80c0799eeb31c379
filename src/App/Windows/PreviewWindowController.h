#pragma once

#include "DocumentWindow.h"

#include <QObject>
#include <QUrl>

#include <functional>
#include <memory>
#include <vector>

/// A window that shows a file which is neither a PDF nor converted into one. It is a window of its own and never a tab,
/// and holds no document: the landing window stays beside it. Main thread only.
class PreviewWindowController : public QObject {
    Q_OBJECT

public:
    /// Opens a window, which owns itself from then on: it goes when the user closes it. A file of no known kind gets
    /// one that says so.
    static void open(const QUrl& url, WindowServices& services);
    /// At the end of the program, before the services go.
    static void closeAll();
    /// In the order of opening.
    [[nodiscard]] static const std::vector<std::unique_ptr<PreviewWindowController>>& openControllers();

    ~PreviewWindowController() override;

    [[nodiscard]] QMainWindow* window() const { return m_window.get(); }

protected:
    /// Sees the window close.
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    PreviewWindowController(const QUrl& url, WindowServices& services);
    void showWindow();

    std::unique_ptr<QMainWindow> m_window;
};
