#pragma once

#include <QObject>

#include <memory>

class DefaultPDFHandler;
class SettingsView;
class UserDefaults;

/// The one settings window of the program. Main thread only.
class SettingsWindow : public QObject {
    Q_OBJECT

public:
    /// The arguments must outlive the object.
    SettingsWindow(UserDefaults& defaults, DefaultPDFHandler& defaultHandler, QObject* parent = nullptr);
    ~SettingsWindow() override;

    /// Brings the window to the front when it is open.
    void show();
    void close();

private:
    UserDefaults& m_defaults;
    DefaultPDFHandler& m_defaultHandler;
    std::unique_ptr<SettingsView> m_view; ///< null while it isn't open
};
