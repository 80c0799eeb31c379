#pragma once

#include <QList>
#include <QObject>
#include <QString>
#include <QUrl>

#include <functional>
#include <memory>
#include <vector>

class Document;
class DocumentPresenter;
class UserDefaults;

/// Keeps the list of open documents and carries out opening, saving and closing. It shows nothing itself: windows and
/// questions are the presenter's. It owns the open documents; main thread only.
class DocumentController : public QObject {
    Q_OBJECT

public:
    /// Makes a new, empty document. Never returns null; may throw DocumentError.
    using DocumentFactory = std::function<std::shared_ptr<Document>()>;

    /// `document` is null if opening failed, and then `error` is what the user was told, title and sentence.
    /// `alreadyOpen` is true if the file was open before.
    using OpenCompletion =
        std::function<void(const std::shared_ptr<Document>& document, bool alreadyOpen, const QString& error)>;

    static constexpr int maximumRecentDocumentCount = 10;

    /// `presenter` and `defaults` must outlive the controller.
    DocumentController(DocumentFactory factory, DocumentPresenter& presenter, UserDefaults& defaults,
                       QObject* parent = nullptr);
    ~DocumentController() override;

    /// In the order of opening.
    const std::vector<std::shared_ptr<Document>>& documents() const { return m_documents; }

    /// The open document of this file, null if there is none. Two paths of one file are the same file.
    std::shared_ptr<Document> documentForURL(const QUrl& url) const;

    /// The open document that belongs to this pointer, null if it is not open.
    std::shared_ptr<Document> documentFor(const Document* document) const;

    /// The document of the active window, as the application says; null if there is none. Opening with display and
    /// making a document set it, closing that document clears it.
    std::shared_ptr<Document> currentDocument() const { return m_currentDocument; }

    /// `document` is null or one of `documents()`; any other is passed over.
    void setCurrentDocument(const std::shared_ptr<Document>& document);

    /// Opens a file, or brings its document forward if it is open. With `display` false no window is made or moved.
    /// A failure is shown by the presenter. `completion`, which may be empty, is called before the function returns.
    void openDocument(const QUrl& url, bool display, const OpenCompletion& completion = {});

    /// Makes and shows an untitled document. Null if the factory fails; the presenter has told.
    std::shared_ptr<Document> newDocument();

    /// Writes the document to its file; asks for one if it is untitled. False if the user cancelled or it failed; a
    /// failure has been shown by the presenter.
    bool saveDocument(const std::shared_ptr<Document>& document);

    /// Asks for a file, writes the document to it and goes on with that file. Refuses the file of another open
    /// document. False as above.
    bool saveDocumentAs(const std::shared_ptr<Document>& document);

    /// Closes the document; asks first what becomes of unsaved changes. False if it stays open because the user
    /// cancelled, saving failed, or the question is still waiting for its answer. True if it isn't open any more.
    bool closeDocument(const std::shared_ptr<Document>& document);

    /// Closes all documents, for quitting; each with unsaved changes is brought forward before its question. Stops at
    /// the first that stays open and returns false.
    bool closeAllDocuments();

    /// Newest first, at most `maximumRecentDocumentCount`; files that do not exist now are left out.
    QList<QUrl> recentDocumentURLs() const;

    /// Puts a local file at the front. Opening and saving do this themselves.
    void noteNewRecentDocumentURL(const QUrl& url);

    void clearRecentDocuments();

Q_SIGNALS:
    void documentAdded(const std::shared_ptr<Document>& document);
    void documentRemoved(const std::shared_ptr<Document>& document);
    void currentDocumentChanged(const std::shared_ptr<Document>& document);
    void recentDocumentsChanged();

private:
    std::shared_ptr<Document> readDocument(const QUrl& url) const;
    void addDocument(const std::shared_ptr<Document>& document);
    void removeDocument(const std::shared_ptr<Document>& document);
    bool writeDocument(const std::shared_ptr<Document>& document, const QUrl& url);
    bool askAndSaveChanges(const std::shared_ptr<Document>& document);

    DocumentFactory m_factory;
    DocumentPresenter& m_presenter;
    UserDefaults& m_defaults;
    std::vector<std::shared_ptr<Document>> m_documents;
    std::shared_ptr<Document> m_currentDocument;
    /// Documents whose question about unsaved changes waits for its answer.
    std::vector<std::shared_ptr<Document>> m_documentsBeingAsked;
};
