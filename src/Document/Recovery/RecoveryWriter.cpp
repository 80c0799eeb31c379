#include "RecoveryWriter.h"

#include "ErrorSentence.h"
#include "FileError.h"
#include "PDFDocument.h"
#include "PDFDocumentSnapshot.h"
#include "PDFDraft.h"
#include "PDFEditorDocument.h"
#include "PDFPage.h"
#include "PDFSource.h"
#include "PagePicture.h"
#include "RecoveryRecord.h"
#include "UndoManager.h"

#include <QElapsedTimer>
#include <QFileInfo>
#include <QFutureWatcher>
#include <QtConcurrent/QtConcurrentRun>

#include <algorithm>

using namespace std::chrono_literals;

// Sharp where the window that offers lost documents shows it with two pixels to the point.
static constexpr QSize pictureSize{200, 240};
static constexpr int shareOfTimeForWriting = 10;
/// Disks wear: 10 MB a minute for a document that has to be written as a whole.
static constexpr qint64 wholeBytesOfMillisecond = 170;

struct RecoveryWriter::Slot {
    std::shared_ptr<RecoveryRecord> record;
};

struct RecoveryWriter::Outcome {
    QString error; ///< empty when it was written
    std::chrono::milliseconds duration{0};
    qint64 wholeByteCount = 0; ///< of a file that was written anew
    bool hasPicture = false;
};

namespace {

/// A picture of a page that only a password opens would show it to everyone.
bool mayBePictured(const PDFDocument& document, const PDFPage* page) {
    return page && !document.isEncrypted() && page->content().source && !page->content().source->isEncrypted();
}

/// False when there is none to store, or no room for it, which is nothing to tell.
bool storePicture(RecoveryRecord& record, const QImage& image) {
    try {
        if (!image.isNull())
            record.setPicture(image);
        return !image.isNull();
    } catch (const FileError&) {
        return false;
    }
}

/// How many bytes of a file written anew there were; 0 for an update of what the record holds.
qint64 writeRecord(RecoveryRecord& record, const RecoveryDescription& description,
                   const PDFDocumentSnapshot& snapshot) {
    if (const std::optional<QByteArray> update = snapshot.update()) {
        record.write(description, snapshot.sourceBytes(), *update);
        return 0;
    }
    record.write(description, [&snapshot](const QString& path) { snapshot.write(path); });
    return record.manifest()->base.byteCount;
}

} // namespace

RecoveryWriter::RecoveryWriter(PDFEditorDocument& document, QThreadPool& pool, QString folder, RecoveryPace pace,
                               CurrentPage currentPage, QObject* parent)
    : QObject(parent), m_document(document), m_pool(pool), m_folder(std::move(folder)), m_pace(pace),
      m_currentPage(std::move(currentPage)), m_slot(std::make_shared<Slot>()),
      m_pictureCancelled(std::make_shared<std::atomic<bool>>(false)) {
    m_timer.setSingleShot(true);
    connect(&m_timer, &QTimer::timeout, this, &RecoveryWriter::write);
    connect(m_document.undoManager().get(), &UndoManager::changed, this, &RecoveryWriter::noteChange);
    connect(&m_document, &PDFEditorDocument::objectWillChange, this, &RecoveryWriter::noteChange);
    connect(&m_document, &Document::fileURLChanged, this, &RecoveryWriter::noteFile);
    connect(&m_document, &PDFEditorDocument::pdfDocumentChanged, this, &RecoveryWriter::followPages);
    connect(&m_document, &Document::documentEditedChanged, this, [this](bool edited) {
        if (edited)
            return;
        remove();
        if (m_document.isBeingTyped())
            noteChange();
    });
    connect(&m_document, &PDFEditorDocument::typed, this, &RecoveryWriter::noteChange);
    connect(&m_document, &Document::beingTypedChanged, this, &RecoveryWriter::noteTyping);
    followPages();
    if (m_document.isDocumentEdited())
        noteChange();
}

RecoveryWriter::~RecoveryWriter() {
    giveUpPicture();
}

void RecoveryWriter::giveUpPicture() {
    *m_pictureCancelled = true;
}

void RecoveryWriter::followPages() {
    for (const QMetaObject::Connection& connection : m_pageConnections)
        disconnect(connection);
    const PDFDocument* pages = m_document.pdfDocument().get();
    m_pageConnections = {connect(pages, &PDFDocument::pagesChanged, this, &RecoveryWriter::noteChange),
                         connect(pages, &PDFDocument::pageContentChanged, this, &RecoveryWriter::noteChange)};
}

void RecoveryWriter::adopt(std::shared_ptr<RecoveryRecord> record) {
    m_slot->record = std::move(record);
    m_hasRecord = true;
    m_hasChanged = false;
    m_timer.stop();
}

bool RecoveryWriter::mayHaveUnsaved() const {
    return m_document.isDocumentEdited() || m_document.isBeingTyped();
}

bool RecoveryWriter::needsWriting() const {
    return m_hasChanged && mayHaveUnsaved() && !m_document.pdfDocument()->isLocked();
}

/// An editor that closes puts what it holds into the document only then: whether nothing is unsaved shows after that.
void RecoveryWriter::noteTyping(bool typed) {
    if (typed)
        return;
    noteChange();
    QMetaObject::invokeMethod(
        this,
        [this] {
            if (!mayHaveUnsaved())
                remove();
        },
        Qt::QueuedConnection);
}

void RecoveryWriter::noteChange() {
    m_hasChanged = true;
    schedule();
}

void RecoveryWriter::schedule() {
    if (!needsWriting() || isWriting() || m_timer.isActive())
        return;
    const auto wait = std::chrono::ceil<std::chrono::milliseconds>(m_nextWrite.remainingTimeAsDuration());
    m_timer.start(std::max(wait, m_pace.afterChange));
}

void RecoveryWriter::writePending() {
    if (!needsWriting())
        return;
    m_timer.stop();
    write();
}

void RecoveryWriter::write() {
    if (!needsWriting())
        return;
    const PDFDraft draft = m_document.draft();
    if (!m_document.isDocumentEdited() && !draft.holdsWords()) {
        remove(); // what was typed was taken back
        return;
    }
    const PDFDocument& pages = *m_document.pdfDocument();
    RecoveryDescription description;
    description.displayName = m_document.displayName();
    description.originalPath =
        m_document.fileURL().isEmpty() ? QString() : QFileInfo(m_document.fileURL().toLocalFile()).absoluteFilePath();
    description.importedPath = m_document.importedFrom().toLocalFile();
    description.originalStamp = m_document.fileStamp();
    description.writeTime = QDateTime::currentDateTime();
    description.pageCount = pages.pageCount();
    description.pageIndex = m_currentPage ? m_currentPage(m_document).value_or(0) : 0;

    std::shared_ptr<const PDFDocumentSnapshot> snapshot;
    std::optional<PagePicture> picture;
    try {
        snapshot = PDFDocumentSnapshot::of(pages, draft);
        const std::shared_ptr<PDFPage> page = pages.page(description.pageIndex);
        if (m_nextPicture.hasExpired() && mayBePictured(pages, page.get()))
            picture.emplace(*page, pictureSize);
    } catch (const std::exception&) {
        Outcome outcome;
        outcome.error = sentenceOfCurrentError("recording unsaved changes");
        ++m_writeCount;
        finish(outcome);
        return;
    }

    m_hasChanged = false;
    ++m_writeCount;
    m_hasRecord = true;
    giveUpPicture(); // of an earlier state
    m_pictureCancelled = std::make_shared<std::atomic<bool>>(false);
    if (picture)
        QTimer::singleShot(m_pace.pictureTimeLimit, this, [cancelled = m_pictureCancelled] { *cancelled = true; });
    auto* watcher = new QFutureWatcher<Outcome>(this);
    connect(watcher, &QFutureWatcher<Outcome>::finished, this, [this, watcher] {
        watcher->deleteLater();
        finish(watcher->result());
    });
    watcher->setFuture(
        QtConcurrent::run(&m_pool, [slot = m_slot, folder = m_folder, description, snapshot = std::move(snapshot),
                                    picture = std::move(picture), cancelled = m_pictureCancelled] {
            return store(*slot, folder, description, *snapshot, picture ? &*picture : nullptr, *cancelled);
        }));
}

RecoveryWriter::Outcome RecoveryWriter::store(Slot& slot, const QString& folder, const RecoveryDescription& description,
                                              const PDFDocumentSnapshot& snapshot, const PagePicture* picture,
                                              const std::atomic<bool>& cancelled) {
    Outcome outcome;
    QElapsedTimer timer;
    timer.start();
    try {
        if (!slot.record || !slot.record->isInPlace())
            slot.record = RecoveryRecord::create(folder);
        outcome.wholeByteCount = writeRecord(*slot.record, description, snapshot);
        outcome.duration = std::chrono::milliseconds(timer.elapsed());
        outcome.hasPicture = picture && storePicture(*slot.record, picture->image(cancelled));
    } catch (const std::exception&) {
        outcome.error = sentenceOfCurrentError("recording unsaved changes");
    }
    // One that never held anything only takes space.
    if (slot.record && !slot.record->manifest() && !outcome.error.isEmpty()) {
        slot.record->remove();
        slot.record.reset();
    }
    return outcome;
}

void RecoveryWriter::finish(const Outcome& outcome) {
    --m_writeCount;
    if (outcome.hasPicture)
        m_nextPicture.setRemainingTime(m_pace.betweenPictures);
    if (outcome.error.isEmpty()) {
        const std::chrono::milliseconds pause = outcome.duration * shareOfTimeForWriting;
        const std::chrono::milliseconds sparing(outcome.wholeByteCount / wholeBytesOfMillisecond);
        const auto longest =
            outcome.wholeByteCount > 0 ? m_pace.longestBetweenWholeWrites : m_pace.longestBetweenWrites;
        m_nextWrite.setRemainingTime(std::clamp(std::max(pause, sparing), m_pace.betweenWrites, longest));
        Q_EMIT written();
    } else {
        m_hasChanged = true;
        m_nextWrite.setRemainingTime(m_pace.beforeRetry);
        if (mayHaveUnsaved())
            Q_EMIT failed(outcome.error);
    }
    schedule();
}

void RecoveryWriter::remove() {
    m_timer.stop();
    m_hasChanged = false;
    m_nextWrite.setRemainingTime(0ms);
    m_nextPicture.setRemainingTime(0ms);
    giveUpPicture();
    if (!std::exchange(m_hasRecord, false))
        return;
    m_pool.start([slot = m_slot] {
        if (slot->record)
            slot->record->remove();
        slot->record.reset();
    });
}
