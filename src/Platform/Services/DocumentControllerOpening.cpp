// Files are read on other threads, and put into documents on the main one.

#include "DocumentController.h"

#include "Document.h"
#include "DocumentPresenter.h"
#include "FilePath.h"
#include "QuilloAssert.h"
#include "ReadDocument.h"
#include "UndoManager.h"

#include <algorithm>
#include <chrono>
#include <exception>
#include <optional>
#include <stop_token>
#include <utility>

/// A file that is being opened.
struct DocumentController::Opening {
    Opening(DocumentPresenter& presenter, QUrl file, bool isDisplayed, OpenCompletion whenDone)
        : url(std::move(file)), display(isDisplayed), completion(std::move(whenDone)),
          reading(std::make_unique<FileReading>(presenter, name())) {}
    ~Opening() { stop.request_stop(); }
    Q_DISABLE_COPY_MOVE(Opening)

    [[nodiscard]] QString name() const { return url.adjusted(QUrl::StripTrailingSlash).fileName(); }

    const QUrl url;
    const bool display;
    const OpenCompletion completion;
    std::optional<DocumentImport> import; ///< for a file of another kind
    std::stop_source stop;                ///< of the conversion
    quint64 number = 0;
    std::shared_ptr<Document> document; ///< to be filled
    std::unique_ptr<FileReading> reading;
    std::optional<ReadDocument> read; ///< once it is there
};

std::unique_ptr<FileReading> DocumentController::readingOf(const QUrl& url) {
    return std::make_unique<FileReading>(m_presenter, url.fileName());
}

void DocumentController::openDocument(const QUrl& url, bool display, const OpenCompletion& completion) {
    const auto opening = std::make_shared<Opening>(m_presenter, url, display, completion);
    open(opening);
}

void DocumentController::importDocument(const DocumentImport& import, const OpenCompletion& completion) {
    const auto opening = std::make_shared<Opening>(m_presenter, import.source, true, completion);
    opening->import = import;
    open(opening);
}

void DocumentController::open(const std::shared_ptr<Opening>& opening) {
    opening->number = ++m_openingCount;
    const QString path = FilePath::absolute(opening->url);
    std::shared_ptr<Document> holder = documentAt(path);
    if (!holder && !path.isEmpty())
        holder = m_saver.documentWritingTo(path);
    if (holder)
        present(holder, true, *opening);
    else
        startReading(opening);
}

void DocumentController::startReading(const std::shared_ptr<Opening>& opening) {
    Document::Reading reading;
    try {
        opening->document = m_factory();
        QUILLO_ASSERT(opening->document, "a document factory must make a document");
        if (opening->import)
            reading = [read = opening->import->read, stop = opening->stop.get_token()] { return read(stop); };
        else
            reading = opening->document->reading(opening->url);
    } catch (const std::exception& exception) {
        failOpening(*opening, exception);
        return;
    }
    m_openings.push_back(opening);
    FileReading& file = *opening->reading;
    connect(&file, &FileReading::becameSlow, this, &DocumentController::deliverOpenings);
    connect(&file, &FileReading::givenUp, this, [this, which = std::weak_ptr(opening)] {
        const std::shared_ptr<Opening> givenUp = which.lock();
        if (!givenUp || std::erase(m_openings, givenUp) == 0)
            return;
        givenUp->reading.release()->deleteLater(); // it is its own signal
        if (givenUp->completion)
            givenUp->completion(nullptr, false, {});
        deliverOpenings();
    });
    const auto deliver = [this, which = std::weak_ptr(opening)](ReadDocument read) {
        if (const std::shared_ptr<Opening> ready = which.lock()) {
            ready->read = std::move(read);
            deliverOpenings();
        }
    };
    if (opening->import)
        file.start([url = opening->url, reading] { return ReadDocument::fromImport(url, reading); }, deliver,
                   std::chrono::milliseconds::zero());
    else
        file.start([url = opening->url, reading] { return ReadDocument::from(url, reading); }, deliver);
}

/// One that is there waits for those that were asked for before, as long as they aren't slow.
std::shared_ptr<DocumentController::Opening> DocumentController::takeNextOpening() {
    for (auto next = m_openings.begin(); next != m_openings.end(); ++next) {
        if ((*next)->read) {
            std::shared_ptr<Opening> ready = *next;
            m_openings.erase(next);
            return ready;
        }
        if (!(*next)->reading->isSlow())
            break;
    }
    return nullptr;
}

void DocumentController::deliverOpenings() {
    if (std::exchange(m_isDelivering, true))
        return; // the message about one is up
    while (const std::shared_ptr<Opening> ready = takeNextOpening())
        finishOpening(*ready);
    m_isDelivering = false;
}

void DocumentController::finishOpening(const Opening& opening) {
    // It may have been opened meanwhile, or by another of its paths.
    if (const std::shared_ptr<Document> holder = documentAt(opening.read->canonicalPath)) {
        present(holder, true, opening);
        return;
    }
    try {
        if (opening.import)
            opening.read->importInto(*opening.document, opening.url);
        else
            opening.read->putInto(*opening.document, opening.url);
    } catch (const std::exception& exception) {
        failOpening(opening, exception);
        return;
    }
    m_canonicalPaths[opening.document.get()] = opening.read->canonicalPath;
    addDocument(opening.document);
    present(opening.document, false, opening);
}

void DocumentController::present(const std::shared_ptr<Document>& document, bool alreadyOpen, const Opening& opening) {
    noteNewRecentDocumentURL(opening.url);
    if (opening.display) {
        const std::shared_ptr<Document> later = m_lastPresentedDocument.lock();
        const bool isOvertaken = opening.number < m_lastPresented && later && later == m_currentDocument;
        if (alreadyOpen)
            m_presenter.bringForward(document);
        else
            m_presenter.show(document);
        if (isOvertaken) {
            m_presenter.bringForward(later);
            setCurrentDocument(later);
        } else {
            m_lastPresented = std::max(m_lastPresented, opening.number);
            m_lastPresentedDocument = document;
            setCurrentDocument(document);
        }
    }
    if (opening.completion)
        opening.completion(document, alreadyOpen, {});
}

void DocumentController::failOpening(const Opening& opening, const std::exception& exception) {
    const QString title =
        opening.import ? opening.import->failureTitle : QStringLiteral("“%1” couldn't be opened.").arg(opening.name());
    const QString sentence = DocumentError::from(exception).sentence();
    m_presenter.presentError(title, sentence);
    if (opening.completion)
        opening.completion(nullptr, false, title + QLatin1Char(' ') + sentence);
}

void DocumentController::readAgain(const std::shared_ptr<Document>& document,
                                   const std::function<void(Rereading outcome, const QString& sentence)>& done) {
    const QUrl url = document->fileURL();
    auto made = std::make_unique<FileReading>(m_presenter, document->displayName());
    FileReading& file = *made;
    m_rereadings[document.get()] = std::move(made);
    connect(&file, &FileReading::givenUp, this, [this, which = document.get()] {
        if (auto node = m_rereadings.extract(which))
            node.mapped().release()->deleteLater();
    });
    const quint64 state = document->undoManager()->state();
    file.start([url, reading = document->reading(url)] { return ReadDocument::from(url, reading); },
               [this, url, state, done, which = document.get()](const ReadDocument& read) {
                   const auto node = m_rereadings.extract(which); // with what is running here, until its end
                   const std::shared_ptr<Document> open = documentFor(which);
                   if (!open)
                       return;
                   if (open->fileURL() != url || open->undoManager()->state() != state || isSaving(*open)) {
                       done(Rereading::overtaken, {});
                       return;
                   }
                   std::optional<DocumentError> error;
                   try {
                       read.putInto(*open, url);
                   } catch (const std::exception& exception) {
                       error = DocumentError::from(exception);
                   }
                   done(error ? Rereading::failed : Rereading::done, error ? error->sentence() : QString());
               });
}
