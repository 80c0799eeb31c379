#include "DocumentSaver.h"

#include "Document.h"
#include "DocumentSnapshot.h"
#include "QuilloAssert.h"
#include "UndoManager.h"

#include <algorithm>
#include <exception>
#include <utility>

DocumentSaver::DocumentSaver(QObject* parent) : QObject(parent) {}

DocumentSaver::~DocumentSaver() = default;

void DocumentSaver::save(const std::shared_ptr<Document>& document, const QUrl& url,
                         const std::optional<FileStamp>& expected, SignatureCare care, Completion completion) {
    QUILLO_ASSERT(!isSaving(*document), "a document is saved once at a time");
    std::shared_ptr<const DocumentSnapshot> snapshot;
    try {
        if (!url.isLocalFile())
            throw DocumentError(QStringLiteral("Only files on this computer can be written to."));
        snapshot = document->snapshot(document->hasGivenUpSignatures() ? SignatureCare::giveUp : care);
    } catch (const std::exception& error) {
        completion(DocumentError::from(error));
        return;
    }
    m_saves.push_back(
        {document, url, document->fileURL(), care, document->undoManager()->noteState(), std::move(completion), {}});
    Q_EMIT savingChanged(document, true);
    m_writer.write(std::move(snapshot), url.toLocalFile(), expected,
                   [this, document](const DocumentWriter::Result& result) { finish(*document, result); });
}

void DocumentSaver::finish(const Document& document, const DocumentWriter::Result& result) {
    const auto found = m_saves.begin() + (find(document) - m_saves.cbegin());
    const Save save = std::move(*found);
    m_saves.erase(found);
    // A document that took up another file meanwhile has nothing to do with this one any more.
    if (!result.error && save.document->fileURL() == save.urlBefore) {
        if (save.care == SignatureCare::giveUp)
            save.document->giveUpSignatures();
        save.document->becomeSaved(save.url, result.stamp, save.state);
    }
    Q_EMIT savingChanged(save.document, false);
    save.completion(result.error);
    for (const Waiter& waiter : save.waiters)
        waiter(!result.error);
}

std::vector<DocumentSaver::Save>::const_iterator DocumentSaver::find(const Document& document) const {
    return std::find_if(m_saves.begin(), m_saves.end(),
                        [&document](const Save& save) { return save.document.get() == &document; });
}

bool DocumentSaver::isSaving(const Document& document) const {
    return find(document) != m_saves.end();
}

std::shared_ptr<Document> DocumentSaver::anyBeingSaved() const {
    return m_saves.empty() ? nullptr : m_saves.front().document;
}

std::shared_ptr<Document> DocumentSaver::documentWritingTo(const QString& path) const {
    const auto found = std::find_if(m_saves.begin(), m_saves.end(),
                                    [&path](const Save& save) { return save.url.toLocalFile() == path; });
    return found != m_saves.end() ? found->document : nullptr;
}

void DocumentSaver::whenSaved(const Document& document, Waiter waiter) {
    const auto found = find(document);
    QUILLO_ASSERT(found != m_saves.end(), "only a save that is under way can be waited for");
    m_saves[static_cast<std::size_t>(found - m_saves.cbegin())].waiters.push_back(std::move(waiter));
}
