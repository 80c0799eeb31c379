#include "LostDocuments.h"

#include "DocumentController.h"
#include "DocumentRecovery.h"
#include "ErrorSentence.h"
#include "PDFDocument.h"
#include "PDFEditorDocument.h"
#include "RecoveryRecord.h"
#include "RecoveryStore.h"

#include <QFileInfo>
#include <QFutureWatcher>
#include <QRegularExpression>
#include <QUrl>
#include <QtConcurrent/QtConcurrentRun>

/// What a worker read of a record, which it gives back.
struct LostDocuments::Reading {
    std::shared_ptr<RecoveryRecord> record;
    QByteArray bytes;
    QString error; ///< empty when all of it was read
};

namespace {

LostDocument::Original stateOfOriginal(const RecoveryDescription& description) {
    if (description.originalPath.isEmpty())
        return LostDocument::Original::none;
    const std::optional<FileStamp> stamp = FileStamp::of(description.originalPath);
    if (!stamp)
        return LostDocument::Original::missing;
    const std::optional<FileStamp>& known = description.originalStamp;
    const bool isSame =
        known && stamp->size == known->size && stamp->modifiedInNanoseconds == known->modifiedInNanoseconds;
    return isSame ? LostDocument::Original::unchanged : LostDocument::Original::changed;
}

/// Empty for the name that any new document gets.
QString untitledName(const RecoveryDescription& description, LostDocument::Original original) {
    static const QRegularExpression usual(QStringLiteral("\\AUntitled(?: [0-9]+)?\\z"));
    if (description.originalPath.isEmpty())
        return usual.match(description.displayName).hasMatch() ? QString() : description.displayName;
    const QString name = QFileInfo(description.originalPath).completeBaseName();
    return original == LostDocument::Original::missing ? name : QStringLiteral("%1 (recovered)").arg(name);
}

} // namespace

LostDocuments::LostDocuments(DocumentController& controller, DocumentRecovery& recovery, QObject* parent)
    : QObject(parent), m_controller(controller), m_recovery(recovery) {
    m_pool.setMaxThreadCount(1);
}

LostDocuments::~LostDocuments() = default;

std::vector<LostDocument> LostDocuments::take() {
    std::vector<LostDocument> lost;
    for (std::unique_ptr<RecoveryRecord>& record :
         RecoveryStore::takeLost(m_recovery.folder(), QDateTime::currentDateTime())) {
        const RecoveryDescription& description = record->manifest()->description;
        lost.push_back({record->id(), description, stateOfOriginal(description), record->picture()});
        m_records[record->id()] = std::move(record);
    }
    return lost;
}

void LostDocuments::recover(const QString& id, Completion completion) {
    const auto node = m_records.extract(id);
    if (node.empty())
        return;
    auto* watcher = new QFutureWatcher<Reading>(this);
    connect(watcher, &QFutureWatcher<Reading>::finished, this, [this, watcher, completion = std::move(completion)] {
        watcher->deleteLater();
        finish(watcher->future().takeResult(), completion);
    });
    watcher->setFuture(QtConcurrent::run(&m_pool, [record = node.mapped()] { return read(record); }));
}

LostDocuments::Reading LostDocuments::read(const std::shared_ptr<RecoveryRecord>& record) {
    Reading reading{record, {}, {}};
    try {
        reading.bytes = record->bytes();
    } catch (...) {
        reading.error = sentenceOfCurrentError("reading a recovery record");
    }
    return reading;
}

void LostDocuments::finish(const Reading& reading, const Completion& completion) {
    std::shared_ptr<PDFEditorDocument> document;
    QString error = reading.error;
    if (error.isEmpty()) {
        try {
            document = open(reading);
        } catch (...) {
            error = sentenceOfCurrentError("opening a recovered document");
        }
    }
    if (!document)
        m_records[reading.record->id()] = reading.record;
    if (completion)
        completion(document, error);
}

std::shared_ptr<PDFEditorDocument> LostDocuments::open(const Reading& reading) {
    const std::shared_ptr<PDFDocument> pages = PDFDocument::fromData(reading.bytes);
    auto document = std::make_shared<PDFEditorDocument>();
    document->setWasPasswordProtected(pages->isLocked());
    document->setPdfDocument(pages);

    const RecoveryDescription& description = reading.record->manifest()->description;
    const LostDocument::Original original = stateOfOriginal(description);
    const QUrl url = QUrl::fromLocalFile(description.originalPath);
    // The reader may have opened the original meanwhile. It makes room, unless there is something to lose.
    const std::shared_ptr<Document> opened = m_controller.documentForURL(url);
    const bool makesRoom = !opened || (!opened->isDocumentEdited() && !opened->isBeingTyped());
    const bool keepsFile = original == LostDocument::Original::unchanged && makesRoom;
    if (keepsFile) {
        document->setFileURL(url);
        document->setFileStamp(FileStamp::of(description.originalPath));
    } else if (!description.importedPath.isEmpty()) {
        document->becomeImport(QUrl::fromLocalFile(description.importedPath));
    } else {
        document->setUntitledName(untitledName(description, original));
    }
    m_controller.openRecovered(document);
    m_recovery.adopt(*document, reading.record);
    if (keepsFile && opened)
        m_controller.closeDocument(opened);
    return document;
}

void LostDocuments::discard(const QString& id) {
    const auto node = m_records.extract(id);
    if (!node.empty())
        node.mapped()->remove();
}

void LostDocuments::release() {
    m_records.clear();
}
