#pragma once

#include "AppActions.h"
#include "AppDelegate.h"
#include "CrashRecovery.h"
#include "DefaultPDFHandler.h"
#include "DocumentController.h"
#include "DocumentDialogs.h"
#include "DocumentFileMonitor.h"
#include "UserDefaults.h"
#include "WindowPresenter.h"

#include <chrono>
#include <memory>

class SettingsView;

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

    /// Takes what another start of the program handed over. The desktop lets a program come to the front only with the
    /// token that it gave to the start.
    void openFromOtherStart(const QStringList& files, const QString& activationToken);
    void reopenFromOtherStart(const QString& activationToken);

    /// Closes all documents, asking once what becomes of unsaved changes, and ends the event loop when all is saved.
    /// Does nothing when the user cancels or a document can't be saved.
    void terminate();

    /// Ends the event loop without asking anything, as the system wants it: at most `sessionEndLimit` later. Documents
    /// that are being saved get that long; whatever else is unsaved is up to the recovery of lost documents.
    void endSession();

    /// What the desktop wants of a program before the session ends: asks what becomes of unsaved changes when that is
    /// allowed, and returns when they are saved, but waits for slow disks no longer than `sessionEndLimit`. False when
    /// the user cancelled. Nothing is closed: the session may go on.
    [[nodiscard]] bool commitSession(bool mayAsk);

    static constexpr std::chrono::seconds sessionEndLimit{10};

    [[nodiscard]] DocumentController& controller() { return m_controller; }
    [[nodiscard]] AppDelegate& delegate() { return m_delegate; }
    [[nodiscard]] WindowPresenter& presenter() { return m_presenter; }
    [[nodiscard]] AppActions& actions() { return m_actions; }
    [[nodiscard]] UserDefaults& defaults() { return m_defaults; }
    [[nodiscard]] CrashRecovery& crashRecovery() { return m_crashRecovery; }

protected:
    /// Sees the desktop end the program after `commitSession`: the windows need not ask again.
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void connectActions();
    void connectSessionManager();
    [[nodiscard]] bool hasUnsavedDocuments() const;
    void setFileDestinations();
    /// For files that Quillo can't show, until it can.
    void refuseFile(const QUrl& url);
    void showOpenPanel();
    void showAbout();
    void makeDefaultViewer();
    /// One window for the whole program: brings it to the front when it is open.
    void showSettings();

    UserDefaults m_defaults;
    std::unique_ptr<DocumentDialogs> m_dialogs;
    WindowPresenter m_presenter;
    DocumentController m_controller;
    AppActions m_actions;
    WindowServices m_services;
    DefaultPDFHandler m_defaultHandler;
    AppDelegate m_delegate;
    CrashRecovery m_crashRecovery;
    DocumentFileMonitor m_fileMonitor;
    std::unique_ptr<SettingsView> m_settings; ///< null while it isn't open
    bool m_isTerminating = false;
    bool m_sessionIsCommitted = false;
};
