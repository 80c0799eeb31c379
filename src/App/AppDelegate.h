#pragma once

#include "DocumentWindow.h"

#include <QList>
#include <QObject>
#include <QUrl>

#include <functional>
#include <memory>
#include <utility>

class DefaultPDFHandler;
class WelcomeWindowController;

/// The window policy: what happens at launch, where opened files go, and when the landing window comes and goes. Main
/// thread only.
class AppDelegate : public QObject {
    Q_OBJECT

public:
    /// The arguments must outlive the delegate.
    AppDelegate(WindowServices& services, DefaultPDFHandler& defaultHandler, QObject* parent = nullptr);
    ~AppDelegate() override;

    /// The launch sequence. Returns at once; the landing window, when nothing else is visible by then, comes up in the
    /// next turn of the event loop.
    void applicationDidFinishLaunching();

    /// Hands each file, in order, to where files of its kind go.
    void openFiles(const QList<QUrl>& urls);

    /// The program was started again without a file: shows the landing window when nothing is visible, and brings
    /// what is visible to the front.
    void handleReopen();

    void showLandingPageIfNoWindowsVisible();
    void closeWelcomeWindow();

    /// Null while there is none. Stays set after the user closed the landing window.
    [[nodiscard]] WelcomeWindowController* welcomeWindowController() const { return m_welcomeWindowController.get(); }

    /// Tells whether a window is about to come up, so that no landing window takes its place for a moment.
    void setIsOpening(std::function<bool()> isOpening) { m_isOpening = std::move(isOpening); }

    /// While true, no landing window takes the place of windows that close.
    void setTerminating(bool terminating) { m_isTerminating = terminating; }

protected:
    /// Sees windows close and become active.
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    [[nodiscard]] bool isWelcomeWindow(const QObject* object) const;
    void takeSecondLook();

    WindowServices& m_services;
    DefaultPDFHandler& m_defaultHandler;
    std::unique_ptr<WelcomeWindowController> m_welcomeWindowController;
    std::function<bool()> m_isOpening;
    bool m_isTerminating = false;
};
