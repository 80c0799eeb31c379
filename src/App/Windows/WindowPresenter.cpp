#include "WindowPresenter.h"

#include "ContentView.h"
#include "DocumentDialogs.h"
#include "PDFEditorDocument.h"
#include "PDFEditorWorkspaceView.h"
#include "PassingNotice.h"
#include "PlainText.h"
#include "QuilloAssert.h"

#include <QApplication>
#include <QDir>
#include <QFileInfo>
#include <QLabel>
#include <QProgressDialog>
#include <QStandardPaths>

#include <utility>

// A sentence about a file takes longer to read than the name of a tool.
static constexpr std::chrono::seconds noticeTime{5};

WindowPresenter::WindowPresenter(DocumentDialogs& dialogs, QObject* parent) : QObject(parent), m_dialogs(dialogs) {}

WindowPresenter::~WindowPresenter() = default;

void WindowPresenter::closeWindow() {
    delete m_window;
}

QWidget* WindowPresenter::windowForQuestions() {
    QWidget* active = QApplication::activeWindow();
    if (active && (active->windowType() == Qt::Window || active->parentWidget())) // no dialog that goes by itself
        return active;
    const QWidgetList windows = QApplication::topLevelWidgets();
    for (QWidget* window : windows) {
        if (window->isVisible() && window->windowType() == Qt::Window)
            return window;
    }
    return nullptr;
}

void WindowPresenter::show(const std::shared_ptr<Document>& document) {
    const auto editorDocument = std::dynamic_pointer_cast<PDFEditorDocument>(document);
    QUILLO_ASSERT(editorDocument && m_services, "The controller's documents are PDFs, and the services are set.");
    if (!m_window) {
        m_window = new DocumentWindow(*m_services);
        connect(m_window, &DocumentWindow::openedInPlace, this, &WindowPresenter::documentPresented);
    }
    m_window->addDocument(editorDocument);
    m_window->present();
    putReadingsOver(m_window);
    Q_EMIT documentPresented();
}

/// They stay over the window that comes up, and don't go with one that closes.
void WindowPresenter::putReadingsOver(QWidget* window) {
    m_shownReadings.removeAll(nullptr);
    for (const QPointer<QWidget>& reading : std::as_const(m_shownReadings)) {
        if (reading->parentWidget() == window || !reading->isVisible())
            continue;
        reading->setParent(window, reading->windowFlags());
        reading->show();
    }
}

void WindowPresenter::bringForward(const std::shared_ptr<Document>& document) {
    ContentView* view = m_window ? m_window->contentView(*document) : nullptr;
    if (!view) {
        show(document);
        return;
    }
    m_window->setCurrent(view);
    m_window->present();
    Q_EMIT documentPresented();
}

std::shared_ptr<void> WindowPresenter::showReading(const QString& name, const std::function<void()>& giveUp) {
    auto* const dialog = new QProgressDialog(m_window);
    dialog->setObjectName(QStringLiteral("slowReading"));
    dialog->setAttribute(Qt::WA_ShowWithoutActivating); // the person goes on elsewhere
    dialog->setWindowTitle(QStringLiteral("Quillo"));
    auto* const label = new QLabel(QStringLiteral("Opening “%1”…").arg(PlainText::name(name)));
    label->setTextFormat(Qt::PlainText);
    dialog->setLabel(label);
    dialog->setAccessibleName(label->text());
    dialog->setCancelButtonText(QStringLiteral("Cancel"));
    dialog->setRange(0, 0);
    connect(dialog, &QProgressDialog::canceled, this, [giveUp] { giveUp(); });
    dialog->show();
    m_shownReadings.append(dialog);
    return {static_cast<void*>(dialog), [shown = QPointer<QProgressDialog>(dialog)](void*) {
                if (!shown)
                    return;
                shown->disconnect();
                shown->hide();
                shown->deleteLater();
            }};
}

DocumentPresenter::SaveAnswer WindowPresenter::askToSave(const std::shared_ptr<Document>& document) {
    return m_dialogs.askToSave(m_window, document->displayName());
}

DocumentPresenter::SaveAllAnswer
WindowPresenter::askToSaveAll(const std::vector<std::shared_ptr<Document>>& documents) {
    std::vector<UnsavedDocumentsDialog::Entry> entries;
    for (const std::shared_ptr<Document>& document : documents) {
        const QString folder = QFileInfo(document->fileURL().toLocalFile()).path();
        entries.push_back({document->displayName(), document->fileURL().isEmpty() ? QStringLiteral("not in a file yet")
                                                                                  : QDir::toNativeSeparators(folder)});
    }
    const DocumentDialogs::SaveAllAnswer reply = m_dialogs.askToSaveAll(m_window, entries);
    SaveAllAnswer all{reply.answer, {}};
    for (std::size_t i = 0; i < documents.size(); ++i) {
        if (reply.checked.at(i))
            all.toSave.push_back(documents[i]);
    }
    return all;
}

DocumentPresenter::OverwriteAnswer WindowPresenter::askAboutChangedFile(const std::shared_ptr<Document>& document) {
    return m_dialogs.askAboutChangedFile(m_window, document->displayName());
}

DocumentPresenter::OverwriteAnswer WindowPresenter::askAboutSignatures(const std::shared_ptr<Document>& document) {
    return m_dialogs.askAboutSignatures(m_window, document->displayName());
}

bool WindowPresenter::askToReload(const std::shared_ptr<Document>& document) {
    return m_dialogs.askToReload(m_window, document->displayName());
}

void WindowPresenter::presentNotice(const std::shared_ptr<Document>& document, const QString& sentence) {
    // Later: a document that was just read again has no view yet.
    QMetaObject::invokeMethod(
        this,
        [this, document, sentence] {
            const ContentView* view = m_window ? m_window->contentView(*document) : nullptr;
            if (view && view->workspace())
                view->workspace()->notice().announce(sentence, noticeTime);
        },
        Qt::QueuedConnection);
}

bool WindowPresenter::askToRevert(const std::shared_ptr<Document>& document) {
    return m_dialogs.askToRevert(m_window, document->displayName());
}

bool WindowPresenter::offerSaveAs(const std::shared_ptr<Document>&, const QString& title, const QString& sentence) {
    return m_dialogs.offerSaveAs(windowForQuestions(), title, sentence);
}

/// Not every home has a folder for documents.
static QString folderForNewFiles() {
    const QString documents = QStandardPaths::writableLocation(QStandardPaths::DocumentsLocation);
    return QFileInfo(documents).isDir() ? documents : QDir::homePath();
}

std::optional<QString> WindowPresenter::chooseSaveLocation(const std::shared_ptr<Document>& document,
                                                           const QString& suggestedName) {
    const QString folder =
        document->originURL().isEmpty() ? folderForNewFiles() : QFileInfo(document->originURL().toLocalFile()).path();
    return m_dialogs.chooseSaveLocation(m_window, QDir(folder).filePath(suggestedName));
}

void WindowPresenter::presentError(const QString& title, const QString& sentence) {
    m_dialogs.presentError(windowForQuestions(), title, sentence);
}

void WindowPresenter::didClose(const std::shared_ptr<Document>& document) {
    if (!m_window)
        return;
    m_window->removeDocument(*document);
    // A window that has lost its last tab is on its way out; the next document gets a new one.
    if (!m_window->currentContentView()) {
        putReadingsOver(nullptr);
        m_window = nullptr;
    }
}
