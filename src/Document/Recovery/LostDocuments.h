#pragma once

#include "LostDocument.h"

#include <QObject>
#include <QThreadPool>

#include <functional>
#include <map>
#include <memory>
#include <vector>

class DocumentController;
class DocumentRecovery;
class PDFEditorDocument;
class RecoveryRecord;

/// The lost documents of this user that nobody else takes care of: found, recovered and deleted. Main thread only.
class LostDocuments : public QObject {
    Q_OBJECT

public:
    /// `document` is null when it couldn't be recovered, and then `error` says why; its record stays.
    using Completion = std::function<void(const std::shared_ptr<PDFEditorDocument>& document, const QString& error)>;

    /// Both must outlive this.
    LostDocuments(DocumentController& controller, DocumentRecovery& recovery, QObject* parent = nullptr);
    ~LostDocuments() override;

    /// Looks for lost documents and keeps other processes from taking them. Newest first.
    [[nodiscard]] std::vector<LostDocument> take();

    /// Opens the document, with its changes unsaved. With the file that it was, if that is as it was then; otherwise
    /// untitled, with a name that says what it is. Reads on another thread and completes later; several complete in the
    /// order of the calls. Does nothing for an id that was recovered or deleted already.
    void recover(const QString& id, Completion completion);
    /// Deletes the record.
    void discard(const QString& id);
    /// Leaves what was neither recovered nor deleted to the next who looks.
    void release();

private:
    struct Reading;

    [[nodiscard]] static Reading read(const std::shared_ptr<RecoveryRecord>& record);
    void finish(const Reading& reading, const Completion& completion);
    [[nodiscard]] std::shared_ptr<PDFEditorDocument> open(const Reading& reading);

    DocumentController& m_controller;
    DocumentRecovery& m_recovery;
    std::map<QString, std::shared_ptr<RecoveryRecord>> m_records;
    QThreadPool m_pool; ///< of one thread: documents come in the order in which they were asked for
};
