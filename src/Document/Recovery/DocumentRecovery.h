#pragma once

#include "RecoveryWriter.h"

#include <QObject>
#include <QThreadPool>

#include <memory>
#include <set>
#include <unordered_map>

class Document;
class DocumentController;
class RecoveryRecord;

/// Keeps the unsaved changes of all documents of a controller safe from a crash. The record of a document goes when it
/// is closed, but not that of one that was recovered and closed again without its password. Main thread only.
class DocumentRecovery : public QObject {
    Q_OBJECT

public:
    /// `controller` must outlive this. Records are made in `folder`, when there is something to record.
    DocumentRecovery(DocumentController& controller, QString folder, RecoveryPace pace = {}, QObject* parent = nullptr);
    /// Records of documents that are still open stay on the disk. Waits for work that was begun.
    ~DocumentRecovery() override;

    /// On from the start. Turned off, it deletes the records of all open documents and makes no more.
    void setOn(bool isOn);

    /// How to learn which page the reader is on; nobody reads unless it is set.
    void setCurrentPage(RecoveryWriter::CurrentPage currentPage) { m_currentPage = std::move(currentPage); }

    /// Gives an open document the record that it was recovered from. See `RecoveryWriter::adopt`.
    void adopt(const Document& document, std::shared_ptr<RecoveryRecord> record);

    /// Begins now what would be written later, as before questions that the user may never answer.
    void writePending();
    /// Waits until all work that was begun is done.
    void waitForDone() { m_pool.waitForDone(); }

    [[nodiscard]] const QString& folder() const { return m_folder; }

Q_SIGNALS:
    /// The changes of a document were written.
    void written();
    /// Changes can't be kept safe now; `sentence` says so and why. Told once, until it works again for every document.
    void writingFailed(const QString& sentence);

private:
    void add(const std::shared_ptr<Document>& document);
    void remove(const std::shared_ptr<Document>& document);
    void noteFile(const std::shared_ptr<Document>& document);
    /// Writes all that is pending and returns when it is on the disk.
    void writeAll();
    void tellFailure(const RecoveryWriter& writer, const QString& sentence);

    DocumentController& m_controller;
    const QString m_folder;
    const RecoveryPace m_pace;
    RecoveryWriter::CurrentPage m_currentPage;
    bool m_isOn = true;
    /// One thread for all: work on one record never overlaps, and leaves the processor to the reader.
    QThreadPool m_pool;
    std::unordered_map<const Document*, std::unique_ptr<RecoveryWriter>> m_writers;
    /// Those whose changes aren't on the disk because the last write failed.
    std::set<const RecoveryWriter*> m_failing;
};
