#pragma once

#include "DocumentImport.h"
#include "DocumentPresenter.h"
#include "DocumentSaver.h"
#include "DocumentSnapshot.h"
#include "DocumentWriter.h"
#include "FileReading.h"
#include "RecentDocuments.h"

#include <QList>
#include <QObject>
#include <QString>
#include <QUrl>

#include <deque>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <vector>

class Document;
class UserDefaults;
struct ReadDocument;

/// Keeps the list of open documents and carries out opening, saving and closing. It shows nothing itself: windows and
/// questions are the presenter's. It owns the open documents; main thread only.
class DocumentController : public QObject {
    Q_OBJECT

public:
    /// Makes a new, empty document. Never returns null; may throw DocumentError.
    using DocumentFactory = std::function<std::shared_ptr<Document>()>;

    /// `document` is null if opening failed, and then `error` is what the user was told, title and sentence; or if the
    /// user gave it up, with no error.
    /// `alreadyOpen` is true if the file was open before.
    using OpenCompletion =
        std::function<void(const std::shared_ptr<Document>& document, bool alreadyOpen, const QString& error)>;

    /// `presenter` and `defaults` must outlive the controller.
    DocumentController(DocumentFactory factory, DocumentPresenter& presenter, UserDefaults& defaults,
                       QObject* parent = nullptr);
    ~DocumentController() override;

    /// In the order of opening.
    const std::vector<std::shared_ptr<Document>>& documents() const { return m_documents; }

    /// The open document of this file, null if there is none. Two paths of one file are the same file.
    std::shared_ptr<Document> documentForURL(const QUrl& url) const;

    /// The same for an absolute or canonical path, as far as it is known without asking the disk.
    std::shared_ptr<Document> documentAt(const QString& path) const;

    /// The open document that belongs to this pointer, null if it is not open.
    std::shared_ptr<Document> documentFor(const Document* document) const;

    /// The document of the active window, as the application says; null if there is none. Opening with display and
    /// making a document set it, closing that document clears it.
    std::shared_ptr<Document> currentDocument() const { return m_currentDocument; }

    /// `document` is null or one of `documents()`; any other is passed over.
    void setCurrentDocument(const std::shared_ptr<Document>& document);

    /// Opens a file, or brings its document forward if it is open or just being saved to that file. With `display`
    /// false no window is made or moved. A failure is shown by the presenter. `completion`, which may be empty, is
    /// called before the function returns for a file that is at hand; the presenter shows one that takes long, and it
    /// can be given up. Files come up in the order in which they were asked for, but none waits for a slow one; that
    /// doesn't take the place of one that was asked for later.
    void openDocument(const QUrl& url, bool display, const OpenCompletion& completion = {});

    /// Opens the file as an untitled document of what it is converted to, with display, as `openDocument` does with a
    /// file of the documents' kind; but no thread waits for it, however short it takes. Giving it up stops the
    /// conversion.
    void importDocument(const DocumentImport& import, const OpenCompletion& completion = {});

    /// For who fills a document of its own with a file: shown as that of `openDocument` when it takes long.
    [[nodiscard]] std::unique_ptr<FileReading> readingOf(const QUrl& url);

    /// Makes and shows an untitled document. Null if the factory fails; the presenter has told.
    std::shared_ptr<Document> newDocument();

    // Saving, copying and closing. The document is written by another thread and can be changed meanwhile; what is to
    // happen after that is chained by completions, never done in a nested event loop. A completion may be empty, is
    // called once, and before the function returns when there is nothing to wait for.

    /// `succeeded` is false if the user cancelled or if it failed; a failure has been shown by the presenter.
    using Completion = std::function<void(bool succeeded)>;

    /// Writes the document to its file; asks for one if it is untitled, and before it overwrites what another program
    /// has put there. While the document is being saved, what changed since is saved afterwards.
    void saveDocument(const std::shared_ptr<Document>& document, const Completion& completion = {});

    /// Asks for a file, writes the document to it and goes on with that file. Refuses the file of another open
    /// document.
    void saveDocumentAs(const std::shared_ptr<Document>& document, const Completion& completion = {}) {
        saveDocumentAs(document, SignatureCare::keep, completion);
    }

    /// True while a save of the document is under way.
    bool isSaving(const Document& document) const { return m_saver.isSaving(document); }

    /// Makes and shows an untitled, edited document with the present content of this one.
    void duplicateDocument(const std::shared_ptr<Document>& document, const Completion& completion = {});

    /// True for a document with changes and a file, which isn't being saved.
    bool canRevertDocument(const Document& document) const;

    /// Gives up the changes and reads the file again, after asking. The document stays as it is when that fails, when
    /// the user gives it up and when it is changed meanwhile.
    void revertDocument(const std::shared_ptr<Document>& document);

    /// Another program has changed the document's file, which has the stamp `stamp` now. Reads it again when nothing
    /// that the user did is lost by that, and asks otherwise; a version that the user keeps may overwrite the file. A
    /// file that can't be read leaves the document as it is. `worthAnotherLook` is called when nothing has happened,
    /// because the file can't be read and `mayBeUnfinished`, or because the document was changed during the reading.
    void fileWasChanged(const std::shared_ptr<Document>& document, const FileStamp& stamp, bool mayBeUnfinished,
                        const std::function<void()>& worthAnotherLook);

    /// Closes the document; asks first what becomes of unsaved changes, and lets a save that is under way end. It stays
    /// open if the user cancelled, if saving failed, or if it is about to be closed already. Succeeds if it isn't open.
    void closeDocument(const std::shared_ptr<Document>& document, const Completion& completion = {});

    /// Closes all documents, for quitting. Asks once about all unsaved changes; when the user cancels or one can't be
    /// saved, all stay open. Documents that come up in between stay open too, and then it hasn't succeeded.
    void closeAllDocuments(const Completion& completion = {});

    /// Saves what is unsaved as `closeAllDocuments` does, but closes nothing.
    void saveAllDocuments(const Completion& completion = {});

    /// For an end of the program at which nobody can be asked: emits `sessionWillEnd` and lets the saves end that are
    /// under way. Closes nothing.
    void prepareForSessionEnd(const Completion& completion = {});

    /// Newest first, without files of which it is known that they are gone.
    QList<QUrl> recentDocumentURLs() const { return m_recentDocuments.urls(); }

    /// Looks up which of them are there now, for when they are shown; `recentDocumentsChanged` tells what that changes.
    void lookUpRecentDocuments() { m_recentDocuments.lookUp(); }

    /// Puts a local file at the front. Opening and saving do this themselves.
    void noteNewRecentDocumentURL(const QUrl& url) { m_recentDocuments.note(url); }

    /// What others remember of files goes with `recentDocumentsCleared`.
    void clearRecentDocuments();

    /// Adds and shows a document that was filled with what a process lost: it is edited, and nothing can be undone. Its
    /// file may be that of an open document only if that is closed next.
    void openRecovered(const std::shared_ptr<Document>& document);

Q_SIGNALS:
    void documentAdded(const std::shared_ptr<Document>& document);
    void documentRemoved(const std::shared_ptr<Document>& document);
    /// The document is in its file, on the disk. It is edited still if it was changed while it was being saved.
    void documentSaved(const std::shared_ptr<Document>& document);
    /// A save began or ended.
    void documentSavingChanged(const std::shared_ptr<Document>& document, bool isSaving);
    /// The program ends soon without asking anything: what keeps unsaved changes safe does so now.
    void sessionWillEnd();
    void currentDocumentChanged(const std::shared_ptr<Document>& document);
    void recentDocumentsChanged();
    void recentDocumentsCleared();

private:
    using Documents = std::vector<std::shared_ptr<Document>>;

    /// The open document of this file, or the one that is being saved to it; null if there is none.
    std::shared_ptr<Document> holderOf(const QUrl& url) const;
    void lookUpPath(const std::shared_ptr<Document>& document);

    struct Opening;
    void open(const std::shared_ptr<Opening>& opening);
    void startReading(const std::shared_ptr<Opening>& opening);
    void deliverOpenings();
    std::shared_ptr<Opening> takeNextOpening();
    void finishOpening(const Opening& opening);
    void present(const std::shared_ptr<Document>& document, bool alreadyOpen, const Opening& opening);
    void failOpening(const Opening& opening, const std::exception& exception);

    enum class Rereading { done, failed, overtaken };
    void readAgain(const std::shared_ptr<Document>& document,
                   const std::function<void(Rereading outcome, const QString& sentence)>& done);
    bool isBeingRead(const Document& document) const { return m_rereadings.count(&document) > 0; }
    void addDocument(const std::shared_ptr<Document>& document);
    void removeDocument(const std::shared_ptr<Document>& document);

    void saveDocumentAs(const std::shared_ptr<Document>& document, SignatureCare care, const Completion& completion);
    void writeDocument(const std::shared_ptr<Document>& document, const QUrl& url,
                       const std::optional<FileStamp>& expected, SignatureCare care, const Completion& completion);
    void finishSave(const std::shared_ptr<Document>& document, const QUrl& url,
                    const std::optional<DocumentError>& error, const Completion& completion);
    void askAboutChangedFile(const std::shared_ptr<Document>& document, const FileStamp& found,
                             const Completion& completion);
    void askAboutSignatures(const std::shared_ptr<Document>& document, const QUrl& url, const Completion& completion);
    QString nameOfCopy(const Document& document) const;
    void openCopy(const QString& path, const QString& name);

    static void call(const Completion& completion, bool succeeded);
    /// Notes that something about the documents is being asked, as long as the caller holds what this returns.
    [[nodiscard]] std::shared_ptr<void> noteQuestion(const Documents& documents);
    bool isBeingAskedAbout(const std::shared_ptr<Document>& document) const;

    DocumentPresenter::SaveAllAnswer askAboutChanges(const Documents& edited);
    void saveChanges(const Documents& givenUp, const Completion& completion);
    void saveAll(Documents documents, const Completion& completion);
    void whenNothingIsSaving(const Completion& completion);

    DocumentFactory m_factory;
    DocumentPresenter& m_presenter;
    RecentDocuments m_recentDocuments;
    Documents m_documents;
    std::map<const Document*, QString> m_canonicalPaths; ///< of the files of open documents, once they are known
    std::shared_ptr<Document> m_currentDocument;
    std::deque<std::shared_ptr<Opening>> m_openings; ///< in the order in which they were asked for
    bool m_isDelivering = false;
    quint64 m_openingCount = 0;
    quint64 m_lastPresented = 0; ///< the number of the latest opening that came up
    std::weak_ptr<Document> m_lastPresentedDocument;
    std::map<const Document*, std::unique_ptr<FileReading>> m_rereadings;
    /// Documents about which a question waits for its answer, once for each question.
    Documents m_documentsInQuestion;
    /// Documents that will be closed when a save has ended.
    Documents m_documentsToBeClosed;
    std::vector<Completion> m_savingAll; ///< who waits for all documents to be saved; empty while nobody does
    DocumentSaver m_saver;
    DocumentWriter m_copyWriter;
};
