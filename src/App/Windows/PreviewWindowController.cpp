#include "PreviewWindowController.h"

#include "AppActions.h"
#include "AssistantViewModel.h"
#include "FileOpenRouter.h"
#include "MainMenu.h"
#include "PlainText.h"
#include "PreviewContentView.h"

#include <QAction>
#include <QEvent>
#include <QScreen>

#include <algorithm>

static constexpr QSize windowSize(900, 700);

static std::vector<std::unique_ptr<PreviewWindowController>>& controllers() {
    static std::vector<std::unique_ptr<PreviewWindowController>> open;
    return open;
}

void PreviewWindowController::open(const QUrl& url, WindowServices& services) {
    controllers().push_back(std::unique_ptr<PreviewWindowController>(new PreviewWindowController(url, services)));
    controllers().back()->showWindow();
}

void PreviewWindowController::closeAll() {
    // At once, which ends what still works on the files: there may be no later turn.
    for (const auto& controller : controllers()) {
        controller->m_window->removeEventFilter(controller.get());
        controller->m_window.reset();
    }
    controllers().clear();
}

const std::vector<std::unique_ptr<PreviewWindowController>>& PreviewWindowController::openControllers() {
    return controllers();
}

PreviewWindowController::PreviewWindowController(const QUrl& url, WindowServices& services)
    : m_window(std::make_unique<QMainWindow>()) {
    const bool isSupported = FileOpenRouter::classify(url) == FileOpenRouter::Kind::track2;
    m_window->setObjectName(QStringLiteral("previewWindow"));
    m_window->setWindowTitle(PlainText::windowTitle(url.adjusted(QUrl::StripTrailingSlash).fileName()));
    m_window->setWindowFilePath(url.toLocalFile());
    m_window->resize(windowSize);
    auto* menu = new MainMenu(*m_window, services.actions, services.controller);
    connect(menu, &MainMenu::closeRequested, m_window.get(), &QWidget::close);
    connect(menu, &MainMenu::openRecentRequested, this, &FileOpenRouter::openRecent);
    auto* content = new PreviewContentView(url, isSupported, [&defaults = services.defaults](const auto& context) {
        return AssistantViewModel::create(context, defaults);
    });
    connect(content, &PreviewContentView::settingsRequested, services.actions.settings, &QAction::trigger);
    m_window->setCentralWidget(content);
    content->setFocus();
    m_window->installEventFilter(this);
}

PreviewWindowController::~PreviewWindowController() {
    if (!m_window)
        return;
    // The command that ends this window may come from one of its own buttons.
    m_window->removeEventFilter(this);
    m_window->hide();
    m_window.release()->deleteLater();
}

void PreviewWindowController::showWindow() {
    const QRect place = m_window->screen()->availableGeometry();
    m_window->resize(m_window->size().boundedTo(place.size()));
    m_window->move(place.center() - m_window->rect().center());
    m_window->show();
    m_window->raise();
    m_window->activateWindow();
}

bool PreviewWindowController::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() == QEvent::Close) {
        QMetaObject::invokeMethod(
            qApp,
            [this] {
                auto& open = controllers();
                open.erase(std::remove_if(open.begin(), open.end(),
                                          [this](const auto& controller) { return controller.get() == this; }),
                           open.end());
            },
            Qt::QueuedConnection);
    }
    return QObject::eventFilter(watched, event);
}
