#include "DocumentRecovery.h"

#include "DocumentController.h"
#include "PDFDocument.h"
#include "PDFEditorDocument.h"
#include "RecoveryRecord.h"

#include <utility>

DocumentRecovery::DocumentRecovery(DocumentController& controller, QString folder, RecoveryPace pace, QObject* parent)
    : QObject(parent), m_controller(controller), m_folder(std::move(folder)), m_pace(pace) {
    m_pool.setMaxThreadCount(1);
    connect(&controller, &DocumentController::documentAdded, this, &DocumentRecovery::add);
    connect(&controller, &DocumentController::documentRemoved, this, &DocumentRecovery::remove);
    connect(&controller, &DocumentController::documentSaved, this, &DocumentRecovery::noteFile);
    connect(&controller, &DocumentController::sessionWillEnd, this, &DocumentRecovery::writeAll);
    for (const std::shared_ptr<Document>& document : controller.documents())
        add(document);
}

DocumentRecovery::~DocumentRecovery() {
    m_writers.clear();
    m_pool.waitForDone();
}

void DocumentRecovery::setOn(bool isOn) {
    if (std::exchange(m_isOn, isOn) == isOn)
        return;
    for (const std::shared_ptr<Document>& document : m_controller.documents()) {
        if (isOn)
            add(document);
        else
            remove(document);
    }
}

void DocumentRecovery::add(const std::shared_ptr<Document>& document) {
    auto* editorDocument = dynamic_cast<PDFEditorDocument*>(document.get());
    if (!editorDocument || !m_isOn)
        return;
    auto writer = std::make_unique<RecoveryWriter>(
        *editorDocument, m_pool, m_folder, m_pace,
        [this](const PDFEditorDocument& read) { return m_currentPage ? m_currentPage(read) : std::nullopt; });
    connect(writer.get(), &RecoveryWriter::written, this, [this, which = writer.get()] {
        m_failing.erase(which);
        Q_EMIT written();
    });
    connect(writer.get(), &RecoveryWriter::failed, this,
            [this, which = writer.get()](const QString& sentence) { tellFailure(*which, sentence); });
    connect(document.get(), &Document::documentEditedChanged, writer.get(),
            [this, which = writer.get()](bool isEdited) {
                if (!isEdited)
                    m_failing.erase(which);
            });
    m_writers[document.get()] = std::move(writer);
}

void DocumentRecovery::remove(const std::shared_ptr<Document>& document) {
    const auto writer = m_writers.find(document.get());
    if (writer == m_writers.end())
        return;
    // Who couldn't open a locked one didn't decide about its changes.
    const auto* editorDocument = dynamic_cast<const PDFEditorDocument*>(document.get());
    if (!editorDocument || !editorDocument->pdfDocument()->isLocked())
        writer->second->remove();
    m_failing.erase(writer->second.get());
    m_writers.erase(writer);
}

void DocumentRecovery::noteFile(const std::shared_ptr<Document>& document) {
    const auto writer = m_writers.find(document.get());
    if (writer != m_writers.end())
        writer->second->noteFile();
}

void DocumentRecovery::tellFailure(const RecoveryWriter& writer, const QString& sentence) {
    const bool isFirst = m_failing.empty();
    m_failing.insert(&writer);
    if (isFirst)
        Q_EMIT writingFailed(QStringLiteral("Unsaved changes can't be kept safe from a crash now. ") + sentence);
}

void DocumentRecovery::adopt(const Document& document, std::shared_ptr<RecoveryRecord> record) {
    const auto writer = m_writers.find(&document);
    if (writer != m_writers.end())
        writer->second->adopt(std::move(record));
}

void DocumentRecovery::writeAll() {
    writePending();
    // This thread waits, so the writers' own time limit for pictures doesn't come.
    if (!m_pool.waitForDone(static_cast<int>(m_pace.pictureTimeLimit.count()))) {
        for (const auto& [document, writer] : m_writers)
            writer->giveUpPicture();
    }
    waitForDone();
}

void DocumentRecovery::writePending() {
    for (const auto& [document, writer] : m_writers)
        writer->writePending();
}
