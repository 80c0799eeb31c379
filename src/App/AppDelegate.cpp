#include "AppDelegate.h"

#include "DefaultPDFHandler.h"
#include "FileOpenRouter.h"
#include "MathImageRenderer.h"
#include "MemoryPressureMonitor.h"
#include "PDFSource.h"
#include "PDFView.h"
#include "ThumbnailCache.h"
#include "WelcomeWindowController.h"

#include <QApplication>
#include <QEvent>
#include <QPointer>
#include <QTimer>

#include <chrono>

using namespace std::chrono_literals;

static constexpr auto defaultViewerPromptDelay = 1s;
static constexpr auto secondLookDelay = 400ms;

/// Whether the object is a window as the user sees it, dialogs included, and no menu or tool tip.
static bool isWindow(const QObject* object) {
    const auto* widget = qobject_cast<const QWidget*>(object);
    return widget && widget->isWindow() && (widget->windowType() == Qt::Window || widget->windowType() == Qt::Dialog);
}

static QWidgetList visibleWindows() {
    QWidgetList windows = QApplication::topLevelWidgets();
    windows.removeIf([](const QWidget* widget) { return !isWindow(widget) || !widget->isVisible(); });
    return windows;
}

/// Of all documents, but for what is on the screen.
static void dropPagePictures() {
    const QWidgetList widgets = QApplication::allWidgets();
    for (QWidget* widget : widgets) {
        if (auto* view = qobject_cast<PDFView*>(widget))
            view->clearCaches();
    }
    PDFSource::releaseAllCaches();
}

AppDelegate::AppDelegate(WindowServices& services, DefaultPDFHandler& defaultHandler, QObject* parent)
    : QObject(parent), m_services(services), m_defaultHandler(defaultHandler) {}

AppDelegate::~AppDelegate() = default;

void AppDelegate::applicationDidFinishLaunching() {
    ThumbnailCache::install(MemoryPressureMonitor::shared());
    MathImageRenderer::install(MemoryPressureMonitor::shared());
    MemoryPressureMonitor::shared().addHandler(dropPagePictures);
    QTimer::singleShot(defaultViewerPromptDelay, this, [this] { m_defaultHandler.promptIfNeeded(); });
    QMetaObject::invokeMethod(this, &AppDelegate::showLandingPageIfNoWindowsVisible, Qt::QueuedConnection);
    qApp->installEventFilter(this);
}

void AppDelegate::openFiles(const QList<QUrl>& urls) {
    for (const QUrl& url : urls)
        FileOpenRouter::open(url);
}

void AppDelegate::handleReopen() {
    const QWidgetList windows = visibleWindows();
    if (windows.isEmpty()) {
        showLandingPageIfNoWindowsVisible();
        return;
    }
    for (QWidget* window : windows) {
        if (window->isMinimized())
            window->setWindowState(window->windowState() & ~Qt::WindowMinimized);
        window->raise();
        window->activateWindow();
    }
}

void AppDelegate::showLandingPageIfNoWindowsVisible() {
    if (m_isTerminating || !visibleWindows().isEmpty() || (m_isOpening && m_isOpening()))
        return;
    m_welcomeWindowController = std::make_unique<WelcomeWindowController>(m_services);
    m_welcomeWindowController->showWindow();
    QTimer::singleShot(secondLookDelay, m_welcomeWindowController.get(), [this] { takeSecondLook(); });
}

/// A file that was opened at the start may have come up at the same moment as the landing window.
void AppDelegate::takeSecondLook() {
    for (const QWidget* window : visibleWindows()) {
        if (qobject_cast<const DocumentWindow*>(window)) {
            closeWelcomeWindow();
            return;
        }
    }
}

void AppDelegate::closeWelcomeWindow() {
    if (!m_welcomeWindowController)
        return;
    m_welcomeWindowController->close();
    m_welcomeWindowController.reset();
}

bool AppDelegate::isWelcomeWindow(const QObject* object) const {
    return m_welcomeWindowController && m_welcomeWindowController->window() == object;
}

bool AppDelegate::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() == QEvent::Hide) {
        if (!event->spontaneous() && isWindow(watched) && !isWelcomeWindow(watched))
            QMetaObject::invokeMethod(this, &AppDelegate::showLandingPageIfNoWindowsVisible, Qt::QueuedConnection);
    } else if (event->type() == QEvent::WindowActivate) {
        if (m_welcomeWindowController && qobject_cast<DocumentWindow*>(watched))
            QMetaObject::invokeMethod(this, &AppDelegate::closeWelcomeWindow, Qt::QueuedConnection);
    }
    return QObject::eventFilter(watched, event);
}
