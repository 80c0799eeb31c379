#pragma once

#include "AppActions.h"
#include "AppDelegate.h"
#include "CrashRecovery.h"
#include "DefaultPDFHandler.h"
#include "DefaultViewerCommand.h"
#include "DocumentController.h"
#include "DocumentDialogs.h"
#include "DocumentFileMonitor.h"
#include "DocumentImporter.h"
#include "SessionEnd.h"
#include "SettingsWindow.h"
#include "UserDefaults.h"
#include "WindowPresenter.h"

#include <memory>

/// The whole program but its event loop: makes the parts and ties them together. One at a time, main thread only; the
/// application object must exist.
class QuilloApp : public QObject {
    Q_OBJECT

public:
    /// `dialogs` ask and tell the user; settings are kept in the user's own file.
    explicit QuilloApp(std::unique_ptr<DocumentDialogs> dialogs = std::make_unique<DocumentDialogs>());
    ~QuilloApp() override;

    /// Opens `files`, or shows the landing window when that leaves nothing to see.
    void launch(const QList<QUrl>& files);

    /// Takes what another start of the program handed over.
    void openFromOtherStart(const QStringList& files, const QString& activationToken);
    void reopenFromOtherStart(const QString& activationToken);

    [[nodiscard]] DocumentController& controller() { return m_controller; }
    [[nodiscard]] DocumentImporter& importer() { return m_importer; }
    [[nodiscard]] SessionEnd& sessionEnd() { return m_sessionEnd; }
    [[nodiscard]] AppDelegate& delegate() { return m_delegate; }
    [[nodiscard]] WindowPresenter& presenter() { return m_presenter; }
    [[nodiscard]] AppActions& actions() { return m_actions; }
    [[nodiscard]] UserDefaults& defaults() { return m_defaults; }
    [[nodiscard]] CrashRecovery& crashRecovery() { return m_crashRecovery; }

private:
    void connectActions();
    void setFileDestinations();
    void importFile(const QUrl& url, const std::weak_ptr<Document>& emptyTab);
    void showOpenPanel();

    UserDefaults m_defaults;
    std::unique_ptr<DocumentDialogs> m_dialogs;
    WindowPresenter m_presenter;
    DocumentController m_controller;
    DocumentImporter m_importer;
    AppActions m_actions;
    WindowServices m_services;
    DefaultPDFHandler m_defaultHandler;
    DefaultViewerCommand m_defaultViewer;
    SettingsWindow m_settings;
    AppDelegate m_delegate;
    SessionEnd m_sessionEnd;
    CrashRecovery m_crashRecovery;
    DocumentFileMonitor m_fileMonitor;
};
