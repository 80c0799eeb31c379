#include "DocumentController.h"

#include "Document.h"
#include "DocumentPresenter.h"
#include "QuilloAssert.h"
#include "UndoManager.h"
#include "UserDefaults.h"

#include <QDir>
#include <QFileInfo>
#include <QScopeGuard>

#include <algorithm>
#include <exception>
#include <new>
#include <optional>
#include <utility>

static const QString recentDocumentsKey = QStringLiteral("DocumentController.recentDocumentPaths");

static QString couldNotBeOpened(const QString& name) {
    return QStringLiteral("“%1” couldn't be opened.").arg(name);
}

static QString couldNotBeSaved(const QString& name) {
    return QStringLiteral("“%1” couldn't be saved.").arg(name);
}

static QString sentenceOf(const std::exception& error) {
    if (const auto* documentError = dynamic_cast<const DocumentError*>(&error))
        return documentError->sentence();
    if (dynamic_cast<const std::bad_alloc*>(&error))
        return QStringLiteral("There isn't enough memory.");
    return QStringLiteral("Something unexpected happened: %1.").arg(QString::fromLocal8Bit(error.what()));
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
    : QObject(parent), m_factory(std::move(factory)), m_presenter(presenter), m_defaults(defaults) {}

DocumentController::~DocumentController() = default;

std::shared_ptr<Document> DocumentController::documentForURL(const QUrl& url) const {
    const QString path = canonicalPath(url);
    const auto found = std::find_if(m_documents.begin(), m_documents.end(), [&path](const auto& document) {
        return !path.isEmpty() && canonicalPath(document->fileURL()) == path;
    });
    return found != m_documents.end() ? *found : nullptr;
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
    std::shared_ptr<Document> document = documentForURL(url);
    const bool alreadyOpen = document != nullptr;
    QString error;
    if (!alreadyOpen) {
        try {
            document = readDocument(url);
            addDocument(document);
        } catch (const std::exception& exception) {
            const QString title = couldNotBeOpened(url.adjusted(QUrl::StripTrailingSlash).fileName());
            error = title + QLatin1Char(' ') + sentenceOf(exception);
            m_presenter.presentError(title, sentenceOf(exception));
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

std::shared_ptr<Document> DocumentController::readDocument(const QUrl& url) const {
    if (!url.isLocalFile())
        throw DocumentError(QStringLiteral("Only files on this computer can be opened."));
    const QFileInfo file(url.toLocalFile());
    if (!file.exists())
        throw DocumentError(QStringLiteral("The file doesn't exist."));
    if (file.isDir())
        throw DocumentError(QStringLiteral("It is a folder."));
    if (!file.isReadable())
        throw DocumentError(QStringLiteral("You don't have permission to read it."));

    std::shared_ptr<Document> document = m_factory();
    QUILLO_ASSERT(document, "a document factory must make a document");
    document->read(url);
    document->setFileURL(url);
    document->undoManager()->removeAllActions();
    document->undoManager()->markSaved();
    return document;
}

std::shared_ptr<Document> DocumentController::newDocument() {
    std::shared_ptr<Document> document;
    try {
        document = m_factory();
    } catch (const std::exception& exception) {
        m_presenter.presentError(QStringLiteral("A new document couldn't be made."), sentenceOf(exception));
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

bool DocumentController::saveDocument(const std::shared_ptr<Document>& document) {
    document->commitEditing();
    if (document->fileURL().isEmpty())
        return saveDocumentAs(document);
    return writeDocument(document, document->fileURL());
}

bool DocumentController::saveDocumentAs(const std::shared_ptr<Document>& document) {
    document->commitEditing();
    const std::optional<QString> path = m_presenter.chooseSaveLocation(document, document->suggestedFileName());
    if (!path)
        return false;
    const QUrl url = QUrl::fromLocalFile(QFileInfo(*path).absoluteFilePath());
    const std::shared_ptr<Document> holder = documentForURL(url);
    if (holder && holder != document) {
        m_presenter.presentError(couldNotBeSaved(url.fileName()),
                                 QStringLiteral("A file of this name is open in another window. Close that window "
                                                "first, or choose another name."));
        return false;
    }
    return writeDocument(document, url);
}

bool DocumentController::writeDocument(const std::shared_ptr<Document>& document, const QUrl& url) {
    try {
        if (!url.isLocalFile())
            throw DocumentError(QStringLiteral("Only files on this computer can be written to."));
        document->write(url.toLocalFile());
    } catch (const std::exception& exception) {
        m_presenter.presentError(couldNotBeSaved(url.fileName()), sentenceOf(exception));
        return false;
    }
    document->setFileURL(url);
    document->undoManager()->markSaved();
    noteNewRecentDocumentURL(url);
    return true;
}

bool DocumentController::closeDocument(const std::shared_ptr<Document>& document) {
    // A pointer of its own: the caller's may be an element of the list, or belong to a window that goes.
    const std::shared_ptr<Document> closing = documentFor(document.get());
    if (!closing)
        return true;
    closing->commitEditing();
    if (closing->isDocumentEdited() && !askAndSaveChanges(closing))
        return false;
    removeDocument(closing);
    return true;
}

/// False if the document has to stay open.
bool DocumentController::askAndSaveChanges(const std::shared_ptr<Document>& document) {
    if (std::count(m_documentsBeingAsked.begin(), m_documentsBeingAsked.end(), document) > 0)
        return false;
    m_documentsBeingAsked.push_back(document);
    const auto finish = qScopeGuard([&] { std::erase(m_documentsBeingAsked, document); });
    switch (m_presenter.askToSave(document)) {
    case DocumentPresenter::SaveAnswer::Save:
        return saveDocument(document);
    case DocumentPresenter::SaveAnswer::DontSave:
        return true;
    case DocumentPresenter::SaveAnswer::Cancel:
        break;
    }
    return false;
}

void DocumentController::removeDocument(const std::shared_ptr<Document>& document) {
    if (std::erase(m_documents, document) == 0)
        return;
    if (m_currentDocument == document)
        setCurrentDocument(nullptr);
    m_presenter.didClose(document);
    Q_EMIT documentRemoved(document);
}

bool DocumentController::closeAllDocuments() {
    while (!m_documents.empty()) {
        const std::shared_ptr<Document> document = m_documents.front();
        document->commitEditing();
        if (document->isDocumentEdited()) {
            m_presenter.bringForward(document);
            setCurrentDocument(document);
        }
        if (!closeDocument(document))
            return false;
    }
    return true;
}

QList<QUrl> DocumentController::recentDocumentURLs() const {
    QList<QUrl> urls;
    for (const QString& path : m_defaults.stringListForKey(recentDocumentsKey).value_or(QStringList())) {
        if (urls.size() < maximumRecentDocumentCount && QFileInfo(path).isFile())
            urls.append(QUrl::fromLocalFile(path));
    }
    return urls;
}

void DocumentController::noteNewRecentDocumentURL(const QUrl& url) {
    if (!url.isLocalFile())
        return;
    const QStringList oldPaths = m_defaults.stringListForKey(recentDocumentsKey).value_or(QStringList());
    QStringList paths = oldPaths;
    const QString newPath = canonicalPath(url);
    paths.removeIf([&](const QString& path) { return canonicalPath(QUrl::fromLocalFile(path)) == newPath; });
    paths.prepend(QFileInfo(url.toLocalFile()).absoluteFilePath());
    paths.resize(std::min<qsizetype>(paths.size(), maximumRecentDocumentCount));
    if (paths == oldPaths)
        return;
    m_defaults.setStringList(recentDocumentsKey, paths);
    Q_EMIT recentDocumentsChanged();
}

void DocumentController::clearRecentDocuments() {
    if (!m_defaults.contains(recentDocumentsKey))
        return;
    m_defaults.removeObject(recentDocumentsKey);
    Q_EMIT recentDocumentsChanged();
}
