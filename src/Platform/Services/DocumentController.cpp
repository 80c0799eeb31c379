#include "DocumentController.h"

#include "Document.h"
#include "FileStamp.h"
#include "QuilloAssert.h"
#include "UndoManager.h"

#include <QDir>
#include <QFileInfo>

#include <algorithm>
#include <exception>
#include <optional>
#include <utility>

static QString couldNotBeOpened(const QString& name) {
    return QStringLiteral("“%1” couldn't be opened.").arg(name);
}

/// One path for all paths of a file, whether it exists or not. Empty for what is not a local file.
static QString canonicalPath(const QUrl& url) {
    if (!url.isLocalFile())
        return {};
    const QFileInfo file(url.toLocalFile());
    if (QString path = file.canonicalFilePath(); !path.isEmpty())
        return path;
    const QString folder = QFileInfo(file.absolutePath()).canonicalFilePath();
    return folder.isEmpty() ? file.absoluteFilePath() : QDir(folder).filePath(file.fileName());
}

DocumentController::DocumentController(DocumentFactory factory, DocumentPresenter& presenter, UserDefaults& defaults,
                                       QObject* parent)
    : QObject(parent), m_factory(std::move(factory)), m_presenter(presenter), m_recentDocuments(defaults) {
    connect(&m_saver, &DocumentSaver::savingChanged, this, &DocumentController::documentSavingChanged);
    connect(&m_recentDocuments, &RecentDocuments::changed, this, &DocumentController::recentDocumentsChanged);
}

DocumentController::~DocumentController() = default;

std::shared_ptr<Document> DocumentController::documentForURL(const QUrl& url) const {
    const QString path = canonicalPath(url);
    const auto found = std::find_if(m_documents.begin(), m_documents.end(), [&path](const auto& document) {
        return !path.isEmpty() && canonicalPath(document->fileURL()) == path;
    });
    return found != m_documents.end() ? *found : nullptr;
}

std::shared_ptr<Document> DocumentController::holderOf(const QUrl& url) const {
    std::shared_ptr<Document> holder = documentForURL(url);
    if (!holder && url.isLocalFile())
        holder = m_saver.documentWritingTo(QFileInfo(url.toLocalFile()).absoluteFilePath());
    return holder;
}

std::shared_ptr<Document> DocumentController::documentFor(const Document* document) const {
    const auto found = std::find_if(m_documents.begin(), m_documents.end(),
                                    [document](const auto& each) { return each.get() == document; });
    return found != m_documents.end() ? *found : nullptr;
}

void DocumentController::setCurrentDocument(const std::shared_ptr<Document>& document) {
    if (document == m_currentDocument || (document && !documentFor(document.get())))
        return;
    m_currentDocument = document;
    Q_EMIT currentDocumentChanged(document);
}

void DocumentController::openDocument(const QUrl& url, bool display, const OpenCompletion& completion) {
    std::shared_ptr<Document> document = holderOf(url);
    const bool alreadyOpen = document != nullptr;
    QString error;
    if (!alreadyOpen) {
        try {
            document = m_factory();
            QUILLO_ASSERT(document, "a document factory must make a document");
            readFile(*document, url);
            addDocument(document);
        } catch (const std::exception& exception) {
            document = nullptr;
            const QString title = couldNotBeOpened(url.adjusted(QUrl::StripTrailingSlash).fileName());
            const QString sentence = DocumentError::from(exception).sentence();
            error = title + QLatin1Char(' ') + sentence;
            m_presenter.presentError(title, sentence);
        }
    }
    if (document) {
        noteNewRecentDocumentURL(url);
        if (display) {
            if (alreadyOpen)
                m_presenter.bringForward(document);
            else
                m_presenter.show(document);
            setCurrentDocument(document);
        }
    }
    if (completion)
        completion(document, alreadyOpen, error);
}

void DocumentController::readFile(Document& document, const QUrl& url) {
    if (!url.isLocalFile())
        throw DocumentError(QStringLiteral("Only files on this computer can be opened."));
    const QFileInfo file(url.toLocalFile());
    if (!file.exists())
        throw DocumentError(QStringLiteral("The file doesn't exist."));
    if (file.isDir())
        throw DocumentError(QStringLiteral("It is a folder."));
    if (!file.isReadable())
        throw DocumentError(QStringLiteral("You don't have permission to read it."));

    // Before reading: what is written to the file from now on counts as a change of another program.
    const std::optional<FileStamp> stamp = FileStamp::of(url.toLocalFile());
    document.read(url);
    document.becomeFile(url, stamp);
}

std::shared_ptr<Document> DocumentController::newDocument() {
    std::shared_ptr<Document> document;
    try {
        document = m_factory();
    } catch (const std::exception& exception) {
        m_presenter.presentError(QStringLiteral("A new document couldn't be made."),
                                 DocumentError::from(exception).sentence());
        return nullptr;
    }
    QUILLO_ASSERT(document, "a document factory must make a document");
    addDocument(document);
    m_presenter.show(document);
    setCurrentDocument(document);
    return document;
}

void DocumentController::addDocument(const std::shared_ptr<Document>& document) {
    m_documents.push_back(document);
    Q_EMIT documentAdded(document);
}

void DocumentController::removeDocument(const std::shared_ptr<Document>& document) {
    if (std::erase(m_documents, document) == 0)
        return;
    if (m_currentDocument == document)
        setCurrentDocument(nullptr);
    m_presenter.didClose(document);
    Q_EMIT documentRemoved(document);
}

void DocumentController::clearRecentDocuments() {
    Q_EMIT recentDocumentsCleared();
    m_recentDocuments.clear();
}

void DocumentController::openRecovered(const std::shared_ptr<Document>& document) {
    document->undoManager()->removeAllActions();
    document->undoManager()->markEdited();
    addDocument(document);
    m_presenter.show(document);
    setCurrentDocument(document);
}
