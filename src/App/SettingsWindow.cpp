#include "SettingsWindow.h"

#include "DefaultPDFHandler.h"
#include "SettingsView.h"

SettingsWindow::SettingsWindow(UserDefaults& defaults, DefaultPDFHandler& defaultHandler, QObject* parent)
    : QObject(parent), m_defaults(defaults), m_defaultHandler(defaultHandler) {}

SettingsWindow::~SettingsWindow() = default;

void SettingsWindow::show() {
    if (!m_view) {
        SettingsView::DefaultViewer viewer;
        viewer.canBeSet = DefaultPDFHandler::canBeSet();
        viewer.isDefault = [this](std::function<void(bool)> answer) { m_defaultHandler.isDefault(std::move(answer)); };
        viewer.setAsDefault = [this](std::function<void(bool)> completion) {
            m_defaultHandler.setAsDefault(std::move(completion));
        };
        m_view = std::make_unique<SettingsView>(m_defaults, std::move(viewer));
        connect(m_view.get(), &QDialog::finished, this, [this] { m_view.release()->deleteLater(); });
    }
    m_view->setWindowState(m_view->windowState() & ~Qt::WindowMinimized);
    m_view->show();
    m_view->raise();
    m_view->activateWindow();
}

void SettingsWindow::close() {
    m_view.reset();
}
