#include "DocumentController.h"

#include "Document.h"
#include "FilePath.h"
#include "FileReading.h"
#include "FileWork.h"
#include "QuilloAssert.h"
#include "UndoManager.h"

#include <QFileInfo>

#include <algorithm>
#include <exception>
#include <utility>

DocumentController::DocumentController(DocumentFactory factory, DocumentPresenter& presenter, UserDefaults& defaults,
                                       QObject* parent)
    : QObject(parent), m_factory(std::move(factory)), m_presenter(presenter), m_recentDocuments(defaults) {
    connect(&m_saver, &DocumentSaver::savingChanged, this, &DocumentController::documentSavingChanged);
    connect(&m_recentDocuments, &RecentDocuments::changed, this, &DocumentController::recentDocumentsChanged);
}

DocumentController::~DocumentController() = default;

std::shared_ptr<Document> DocumentController::documentAt(const QString& path) const {
    const auto isThere = [this, &path](const std::shared_ptr<Document>& document) {
        const auto canonical = m_canonicalPaths.find(document.get());
        return FilePath::absolute(document->originURL()) == path ||
               (canonical != m_canonicalPaths.end() && canonical->second == path);
    };
    const auto found =
        path.isEmpty() ? m_documents.end() : std::find_if(m_documents.begin(), m_documents.end(), isThere);
    return found != m_documents.end() ? *found : nullptr;
}

std::shared_ptr<Document> DocumentController::documentForURL(const QUrl& url) const {
    std::shared_ptr<Document> document = documentAt(FilePath::absolute(url));
    return document ? document : documentAt(FilePath::canonical(url));
}

void DocumentController::lookUpPath(const std::shared_ptr<Document>& document) {
    m_canonicalPaths.erase(document.get());
    const QUrl url = document->originURL();
    if (!url.isLocalFile())
        return;
    FileWork::run(
        this, [url] { return FilePath::canonical(url); },
        [this, url, which = std::weak_ptr(document)](const QString& path) {
            const std::shared_ptr<Document> open = which.lock();
            if (open && documentFor(open.get()) && open->originURL() == url)
                m_canonicalPaths[open.get()] = path;
        },
        FileReading::patience);
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
    connect(document.get(), &Document::fileURLChanged, this, [this, which = document.get()] {
        if (const std::shared_ptr<Document> changed = documentFor(which))
            lookUpPath(changed);
    });
    if (m_canonicalPaths.count(document.get()) == 0)
        lookUpPath(document);
    Q_EMIT documentAdded(document);
}

void DocumentController::removeDocument(const std::shared_ptr<Document>& document) {
    if (std::erase(m_documents, document) == 0)
        return;
    disconnect(document.get(), &Document::fileURLChanged, this, nullptr);
    m_canonicalPaths.erase(document.get());
    m_rereadings.erase(document.get());
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
