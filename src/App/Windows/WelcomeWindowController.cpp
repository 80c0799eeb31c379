#include "WelcomeWindowController.h"

#include "FileOpenRouter.h"
#include "LandingView.h"
#include "MainMenu.h"

WelcomeWindowController::WelcomeWindowController(WindowServices& services, QObject* parent)
    : QObject(parent), m_window(std::make_unique<QMainWindow>()) {
    m_window->setObjectName(QStringLiteral("welcomeWindow"));
    m_window->setWindowTitle(QStringLiteral("Quillo"));
    m_window->resize(720, 560);
    m_window->setMinimumSize(480, 360);
    auto* menu = new MainMenu(*m_window, services.actions, services.controller);
    connect(menu, &MainMenu::closeRequested, m_window.get(), &QWidget::close);
    connect(menu, &MainMenu::openRecentRequested, this, &FileOpenRouter::openRecent);
    auto* landing = new LandingView(services.controller, {});
    m_window->setCentralWidget(landing);
    landing->setFocus();
}

WelcomeWindowController::~WelcomeWindowController() {
    // The command that ends this window may come from one of its own buttons.
    m_window->hide();
    m_window.release()->deleteLater();
}

void WelcomeWindowController::showWindow() {
    m_window->showMaximized();
    m_window->raise();
    m_window->activateWindow();
}

void WelcomeWindowController::close() {
    m_window->close();
}
