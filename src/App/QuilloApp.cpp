#include "QuilloApp.h"

#include "AboutBox.h"
#include "ActivationToken.h"
#include "FileOpenRouter.h"
#include "FileRefusal.h"
#include "OpenPanel.h"
#include "PDFDocument.h"
#include "PDFEditorDocument.h"
#include "PreviewWindowController.h"
#include "RecentPageStore.h"
#include "RecentScaleStore.h"
#include "SavePanel.h"

#include <QFileInfo>
#include <QGuiApplication>

QuilloApp::QuilloApp(std::unique_ptr<DocumentDialogs> dialogs)
    : m_defaults(UserDefaults::standardFilePath(QStringLiteral("Quillo"), QStringLiteral("Quillo"))),
      m_dialogs(std::move(dialogs)), m_presenter(*m_dialogs),
      m_controller([] { return std::make_shared<PDFEditorDocument>(); }, m_presenter, m_defaults),
      m_importer(m_controller), m_services{m_controller, m_defaults, m_actions, *m_dialogs},
      m_defaultHandler(
          m_defaults,
          [this](DocumentDialogs::Answered answered) { m_dialogs->offerToBecomeDefault(std::move(answered)); }),
      m_defaultViewer(m_defaultHandler, *m_dialogs), m_settings(m_defaults, m_defaultHandler),
      m_delegate(m_services, m_defaultHandler), m_sessionEnd(m_controller, m_delegate, *m_dialogs),
      m_crashRecovery(m_controller, m_presenter, m_defaults), m_fileMonitor(m_controller, m_presenter) {
    m_presenter.setServices(m_services);
    m_delegate.setIsOpening([this] { return m_importer.isConverting(); });
    connect(&m_presenter, &WindowPresenter::documentPresented, &m_delegate, &AppDelegate::closeWelcomeWindow,
            Qt::QueuedConnection);
    connect(qGuiApp, &QGuiApplication::applicationStateChanged, &m_fileMonitor, [this](Qt::ApplicationState state) {
        if (state == Qt::ApplicationActive)
            m_fileMonitor.checkAll();
    });
    connect(&m_controller, &DocumentController::recentDocumentsCleared, this, [this] {
        RecentPageStore::clear(m_defaults);
        RecentScaleStore::clear(m_defaults);
    });
    SavePanel::rememberIn(m_defaults);
    connectActions();
    setFileDestinations();
}

QuilloApp::~QuilloApp() {
    FileOpenRouter::setDestinations({});
    // Windows refer to the parts that are destroyed before them.
    m_delegate.setTerminating(true);
    m_delegate.closeWelcomeWindow();
    m_settings.close();
    PreviewWindowController::closeAll();
    m_presenter.closeWindow();
}

void QuilloApp::connectActions() {
    connect(m_actions.newTab, &QAction::triggered, &m_controller, &DocumentController::newDocument);
    connect(m_actions.open, &QAction::triggered, this, &QuilloApp::showOpenPanel);
    connect(m_actions.quit, &QAction::triggered, &m_sessionEnd, &SessionEnd::terminate);
    connect(m_actions.settings, &QAction::triggered, &m_settings, &SettingsWindow::show);
    connect(m_actions.about, &QAction::triggered, this, [] { AboutBox::show(WindowPresenter::windowForQuestions()); });
    connect(m_actions.makeDefault, &QAction::triggered, &m_defaultViewer, &DefaultViewerCommand::run);
    m_actions.makeDefault->setEnabled(DefaultPDFHandler::canBeSet());
}

void QuilloApp::setFileDestinations() {
    FileOpenRouter::Destinations destinations;
    destinations.openDocument = [this](const QUrl& url) { m_controller.openDocument(url, true); };
    const auto refuse = [this](const QUrl& url) {
        const FileRefusal refusal = FileRefusal::of(url);
        m_presenter.presentError(refusal.title, refusal.sentence);
    };
    destinations.openImport = [this](const QUrl& url, const std::shared_ptr<Document>& emptyTab) {
        importFile(url, emptyTab);
    };
    destinations.openPreview = [this, refuse](const QUrl& url, bool) {
        if (url.isLocalFile() && QFileInfo::exists(url.toLocalFile()))
            PreviewWindowController::open(url, m_services);
        else
            refuse(url);
    };
    FileOpenRouter::setDestinations(std::move(destinations));
}

void QuilloApp::importFile(const QUrl& url, const std::weak_ptr<Document>& emptyTab) {
    m_importer.open(url, [this, emptyTab](const std::shared_ptr<Document>& imported, bool alreadyOpen, const QString&) {
        const auto empty = std::dynamic_pointer_cast<PDFEditorDocument>(emptyTab.lock());
        if (imported && !alreadyOpen && empty && empty->pdfDocument()->pageCount() == 0 && !empty->isDocumentEdited())
            m_controller.closeDocument(empty);
    });
}

void QuilloApp::launch(const QList<QUrl>& files) {
    m_delegate.openFiles(files);
    m_delegate.applicationDidFinishLaunching();
    m_crashRecovery.offerLostDocuments();
}

void QuilloApp::openFromOtherStart(const QStringList& files, const QString& activationToken) {
    ActivationToken::use(activationToken);
    QList<QUrl> urls;
    for (const QString& file : files)
        urls.append(QUrl(file));
    m_delegate.openFiles(urls);
}

void QuilloApp::reopenFromOtherStart(const QString& activationToken) {
    ActivationToken::use(activationToken);
    m_delegate.handleReopen();
}

void QuilloApp::showOpenPanel() {
    QWidget* window = WindowPresenter::windowForQuestions();
    if (window)
        OpenPanel::show(window, FileOpenRouter::nameFilters(), [](const QUrl& url) { FileOpenRouter::open(url); });
}
