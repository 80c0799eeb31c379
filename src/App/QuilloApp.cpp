#include "QuilloApp.h"

#include "FileOpenRouter.h"
#include "OpenPanel.h"
#include "PDFEditorDocument.h"
#include "SettingsView.h"

#include <QApplication>
#include <QEvent>
#include <QEventLoop>
#include <QFileInfo>
#include <QMessageBox>
#include <QSessionManager>
#include <QTimer>

#include <algorithm>
#include <optional>

QuilloApp::QuilloApp(std::unique_ptr<DocumentDialogs> dialogs)
    : m_defaults(UserDefaults::standardFilePath(QStringLiteral("Quillo"), QStringLiteral("Quillo"))),
      m_dialogs(std::move(dialogs)), m_presenter(*m_dialogs),
      m_controller([] { return std::make_shared<PDFEditorDocument>(); }, m_presenter, m_defaults),
      m_services{m_controller, m_defaults, m_actions, *m_dialogs},
      m_defaultHandler(m_defaults,
                       [this] { return m_dialogs->askToBecomeDefault(WindowPresenter::windowForQuestions()); }),
      m_delegate(m_services, m_defaultHandler), m_crashRecovery(m_controller, m_presenter),
      m_fileMonitor(m_controller, m_presenter) {
    m_presenter.setServices(m_services);
    connect(&m_presenter, &WindowPresenter::documentPresented, &m_delegate, &AppDelegate::closeWelcomeWindow,
            Qt::QueuedConnection);
    connect(qGuiApp, &QGuiApplication::applicationStateChanged, &m_fileMonitor, [this](Qt::ApplicationState state) {
        if (state == Qt::ApplicationActive)
            m_fileMonitor.checkAll();
    });
    connectActions();
    connectSessionManager();
    setFileDestinations();
}

QuilloApp::~QuilloApp() {
    FileOpenRouter::setDestinations({});
    // Windows refer to the parts that are destroyed before them.
    m_delegate.setTerminating(true);
    m_delegate.closeWelcomeWindow();
    m_settings.reset();
    m_presenter.closeWindow();
}

void QuilloApp::connectActions() {
    connect(m_actions.newTab, &QAction::triggered, &m_controller, &DocumentController::newDocument);
    connect(m_actions.open, &QAction::triggered, this, &QuilloApp::showOpenPanel);
    connect(m_actions.quit, &QAction::triggered, this, &QuilloApp::terminate);
    connect(m_actions.settings, &QAction::triggered, this, &QuilloApp::showSettings);
    connect(m_actions.about, &QAction::triggered, this, &QuilloApp::showAbout);
    connect(m_actions.makeDefault, &QAction::triggered, this, &QuilloApp::makeDefaultViewer);
    m_actions.makeDefault->setEnabled(DefaultPDFHandler::canBeSet());
}

void QuilloApp::setFileDestinations() {
    FileOpenRouter::Destinations destinations;
    destinations.openDocument = [this](const QUrl& url) { m_controller.openDocument(url, true); };
    destinations.openImport = [this](const QUrl& url) { refuseFile(url); };
    destinations.openPreview = [this](const QUrl& url, bool) { refuseFile(url); };
    FileOpenRouter::setDestinations(std::move(destinations));
}

void QuilloApp::refuseFile(const QUrl& url) {
    const QString name = url.fileName().isEmpty() ? url.toDisplayString() : url.fileName();
    const QFileInfo file(url.toLocalFile());
    QString sentence = QStringLiteral("“%1” isn't a PDF. Quillo opens PDF files only so far.");
    if (!url.isLocalFile())
        sentence = QStringLiteral("“%1” isn't a file on this computer.");
    else if (!file.exists())
        sentence = QStringLiteral("There is no file “%1”.");
    else if (file.isDir())
        sentence = QStringLiteral("“%1” is a folder.");
    m_presenter.presentError(QStringLiteral("“%1” can't be opened.").arg(name), sentence.arg(name));
}

void QuilloApp::launch(const QList<QUrl>& files) {
    m_delegate.openFiles(files);
    m_delegate.applicationDidFinishLaunching();
    m_crashRecovery.offerLostDocuments();
}

void QuilloApp::openFromOtherStart(const QStringList& files, const QString& activationToken) {
    qputenv("XDG_ACTIVATION_TOKEN", activationToken.toUtf8());
    QList<QUrl> urls;
    for (const QString& file : files)
        urls.append(QUrl(file));
    m_delegate.openFiles(urls);
}

void QuilloApp::reopenFromOtherStart(const QString& activationToken) {
    qputenv("XDG_ACTIVATION_TOKEN", activationToken.toUtf8());
    m_delegate.handleReopen();
}

void QuilloApp::terminate() {
    if (m_isTerminating)
        return;
    m_isTerminating = true;
    m_delegate.setTerminating(true);
    m_controller.closeAllDocuments([this](bool succeeded) {
        m_isTerminating = false;
        if (succeeded)
            QCoreApplication::quit();
        else
            m_delegate.setTerminating(false);
    });
}

void QuilloApp::endSession() {
    m_delegate.setTerminating(true);
    // Not `quit`, which would let the windows ask.
    QTimer::singleShot(sessionEndLimit, this, [] { QCoreApplication::exit(); });
    m_controller.prepareForSessionEnd([](bool) { QCoreApplication::exit(); });
}

bool QuilloApp::commitSession(bool mayAsk) {
    struct Outcome {
        QEventLoop loop;
        std::optional<bool> succeeded;
    };
    // Shared with a completion that may come after the time is over.
    const auto outcome = std::make_shared<Outcome>();
    const auto completion = [outcome](bool succeeded) {
        outcome->succeeded = succeeded;
        outcome->loop.quit();
    };
    if (mayAsk)
        m_controller.saveAllDocuments(completion);
    else
        m_controller.prepareForSessionEnd(completion);
    if (!outcome->succeeded) {
        QTimer::singleShot(sessionEndLimit, &outcome->loop, &QEventLoop::quit);
        outcome->loop.exec();
    }
    m_sessionIsCommitted = !mayAsk || outcome->succeeded.value_or(true);
    return m_sessionIsCommitted;
}

bool QuilloApp::hasUnsavedDocuments() const {
    const auto& documents = m_controller.documents();
    return std::any_of(documents.begin(), documents.end(),
                       [](const auto& document) { return document->isDocumentEdited() || document->isBeingTyped(); });
}

void QuilloApp::connectSessionManager() {
    const auto commit = [this](QSessionManager& manager) {
        if (!hasUnsavedDocuments())
            return;
        const bool mayAsk = manager.allowsInteraction();
        const bool mayEnd = commitSession(mayAsk);
        if (mayAsk)
            manager.release();
        if (!mayEnd)
            manager.cancel();
    };
    connect(qGuiApp, &QGuiApplication::commitDataRequest, this, commit, Qt::DirectConnection);
    qApp->installEventFilter(this);
}

bool QuilloApp::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() == QEvent::Quit && watched == qApp && m_sessionIsCommitted) {
        QCoreApplication::exit();
        return true;
    }
    return QObject::eventFilter(watched, event);
}

void QuilloApp::showOpenPanel() {
    QWidget* window = WindowPresenter::windowForQuestions();
    if (window)
        OpenPanel::show(window, [](const QUrl& url) { FileOpenRouter::open(url); });
}

void QuilloApp::showAbout() {
    auto* box = new QMessageBox(WindowPresenter::windowForQuestions());
    box->setObjectName(QStringLiteral("about"));
    box->setAttribute(Qt::WA_DeleteOnClose);
    box->setWindowTitle(QStringLiteral("About Quillo"));
    box->setIconPixmap(QApplication::windowIcon().pixmap(QSize(64, 64), box->devicePixelRatioF()));
    box->setText(QStringLiteral("Quillo %1").arg(QCoreApplication::applicationVersion()));
    box->setInformativeText(
        QStringLiteral("Highlight, draw, and ask AI about your PDFs.\n\nFree software under the GNU Affero "
                       "General Public License, version 3 or later."));
    box->addButton(QStringLiteral("OK"), QMessageBox::AcceptRole);
    box->open();
}

void QuilloApp::showSettings() {
    if (!m_settings) {
        SettingsView::DefaultViewer viewer;
        viewer.canBeSet = DefaultPDFHandler::canBeSet();
        viewer.isDefault = [this](std::function<void(bool)> answer) { m_defaultHandler.isDefault(std::move(answer)); };
        viewer.setAsDefault = [this](std::function<void(bool)> completion) {
            m_defaultHandler.setAsDefault(std::move(completion));
        };
        m_settings = std::make_unique<SettingsView>(m_defaults, std::move(viewer));
        connect(m_settings.get(), &QDialog::finished, this, [this] { m_settings.release()->deleteLater(); });
    }
    m_settings->setWindowState(m_settings->windowState() & ~Qt::WindowMinimized);
    m_settings->show();
    m_settings->raise();
    m_settings->activateWindow();
}

void QuilloApp::makeDefaultViewer() {
    m_defaultHandler.isDefault([this](bool isDefaultNow) {
        if (isDefaultNow) {
            m_dialogs->presentMessage(WindowPresenter::windowForQuestions(), QStringLiteral("Quillo is your default"),
                                      QStringLiteral("PDFs open in Quillo already."));
            return;
        }
        if (!m_dialogs->askToBecomeDefault(WindowPresenter::windowForQuestions()))
            return;
        m_defaultHandler.setAsDefault([this](bool succeeded) {
            if (!succeeded)
                m_presenter.presentError(QStringLiteral("Quillo could not become your default PDF viewer."),
                                         QStringLiteral("The desktop did not accept the change."));
        });
    });
}
