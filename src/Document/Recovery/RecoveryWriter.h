#pragma once

#include <QDeadlineTimer>
#include <QObject>
#include <QTimer>

#include <atomic>
#include <chrono>
#include <functional>
#include <memory>
#include <optional>

class PDFDocumentSnapshot;
class PDFEditorDocument;
class PagePicture;
class QThreadPool;
class RecoveryRecord;
struct RecoveryDescription;

/// How often the changes of a document are kept safe.
struct RecoveryPace {
    /// From a change to its writing, so that changes that come together are written together.
    std::chrono::milliseconds afterChange{5'000};
    /// From one write to the next. A document whose writing takes long waits for longer, so that writing takes a tenth
    /// of the time at most, but never longer than the second of these.
    std::chrono::milliseconds betweenWrites{10'000};
    std::chrono::milliseconds longestBetweenWrites{20'000};
    /// The longest time for one that is written as a whole each time, as protected ones are and those that lack pages;
    /// the larger it is, the longer it waits.
    std::chrono::milliseconds longestBetweenWholeWrites{180'000};
    /// After a failure.
    std::chrono::milliseconds beforeRetry{60'000};
    /// From one picture of the reader's page to the next.
    std::chrono::milliseconds betweenPictures{60'000};
    /// For drawing it.
    std::chrono::milliseconds pictureTimeLimit{5'000};
};

/// Keeps the recovery record of one document: makes it at the first change, writes it anew as the document goes on
/// changing, and deletes it once nothing is unsaved. What somebody is just typing counts as a change. Main thread; the
/// work is done on another.
class RecoveryWriter : public QObject {
    Q_OBJECT

public:
    /// The zero-based page that the reader is on, none when nobody reads.
    using CurrentPage = std::function<std::optional<int>(const PDFEditorDocument& document)>;

    /// `document` lives as long as the writer; `pool`, which must have one thread, lives longer. Records are made in
    /// `folder`.
    RecoveryWriter(PDFEditorDocument& document, QThreadPool& pool, QString folder, RecoveryPace pace,
                   CurrentPage currentPage, QObject* parent = nullptr);
    /// Leaves the record on the disk, after the work that was begun.
    ~RecoveryWriter() override;

    /// Goes on with a record that holds the document as it is now.
    void adopt(std::shared_ptr<RecoveryRecord> record);
    /// Deletes the record.
    void remove();
    /// Begins now what would be written later, also while an earlier state is being written.
    void writePending();
    /// Lets the work that was begun end without a picture.
    void giveUpPicture();
    /// The document's file was written, so the record is to tell of it.
    void noteFile() { noteChange(); }

Q_SIGNALS:
    void written();
    /// `sentence` tells why. It is tried again later.
    void failed(const QString& sentence);

private:
    /// The record for the worker; nobody else looks at it while work is under way.
    struct Slot;
    struct Outcome;

    /// The work of one write. Without `picture` the record keeps the one that it has.
    [[nodiscard]] static Outcome store(Slot& slot, const QString& folder, const RecoveryDescription& description,
                                       const PDFDocumentSnapshot& snapshot, const PagePicture* picture,
                                       const std::atomic<bool>& cancelled);

    void followPages();
    void noteChange();
    void noteTyping(bool typed);
    void schedule();
    void write();
    void finish(const Outcome& outcome);
    [[nodiscard]] bool mayHaveUnsaved() const;
    [[nodiscard]] bool needsWriting() const;
    [[nodiscard]] bool isWriting() const { return m_writeCount > 0; }

    PDFEditorDocument& m_document;
    QThreadPool& m_pool;
    const QString m_folder;
    const RecoveryPace m_pace;
    const CurrentPage m_currentPage;
    const std::shared_ptr<Slot> m_slot;
    QList<QMetaObject::Connection> m_pageConnections;
    QTimer m_timer;
    QDeadlineTimer m_nextWrite{0};
    QDeadlineTimer m_nextPicture{0};
    std::shared_ptr<std::atomic<bool>> m_pictureCancelled;
    bool m_hasChanged = false;
    int m_writeCount = 0;     ///< begun and not finished
    bool m_hasRecord = false; ///< there is one, or work under way that makes one
};
