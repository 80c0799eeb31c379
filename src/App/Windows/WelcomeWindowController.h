#pragma once

#include "DocumentWindow.h"

#include <QObject>

/// The landing window: what is on the screen while nothing is open. It is a window of its own and never a tab.
class WelcomeWindowController : public QObject {
    Q_OBJECT

public:
    explicit WelcomeWindowController(WindowServices& services, QObject* parent = nullptr);
    ~WelcomeWindowController() override;

    [[nodiscard]] QMainWindow* window() const { return m_window.get(); }

    /// As large as the screen allows, in front.
    void showWindow();
    void close();

private:
    std::unique_ptr<QMainWindow> m_window;
};
