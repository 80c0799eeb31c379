#pragma once

#include "DocumentError.h"
#include "DocumentWriter.h"

#include <QObject>
#include <QUrl>

#include <functional>
#include <memory>
#include <optional>
#include <vector>

class Document;
enum class SignatureCare;

/// Stores documents in their files while they can be used and changed; one save of a document at a time. Asks and shows
/// nothing. Main thread only.
class DocumentSaver : public QObject {
    Q_OBJECT

public:
    /// `error` is none when the file is safely on the disk.
    using Completion = std::function<void(const std::optional<DocumentError>& error)>;
    using Waiter = std::function<void(bool isSaved)>;

    explicit DocumentSaver(QObject* parent = nullptr);

    /// Waits until what is being saved is on the disk. The completions that are still due are not called.
    ~DocumentSaver() override;

    /// Writes the present state to the file at `url`, which becomes the document's file when it is written. Changes
    /// that are made meanwhile leave the document edited. The document must not be being saved. For
    /// `expected` see `DocumentWriter::write`; signatures that were given up once are so for good. `completion` comes
    /// from the event loop, or before this returns when nothing could be begun.
    void save(const std::shared_ptr<Document>& document, const QUrl& url, const std::optional<FileStamp>& expected,
              SignatureCare care, Completion completion);

    [[nodiscard]] bool isSaving(const Document& document) const;
    /// One of the documents that are being saved; null when there is none.
    [[nodiscard]] std::shared_ptr<Document> anyBeingSaved() const;
    /// The document that is being written to `path`, which must be absolute; null when there is none.
    [[nodiscard]] std::shared_ptr<Document> documentWritingTo(const QString& path) const;

    /// Calls `waiter` after the completion of the document's save, which must be under way.
    void whenSaved(const Document& document, Waiter waiter);

Q_SIGNALS:
    /// A save of the document began or ended.
    void savingChanged(const std::shared_ptr<Document>& document, bool isSaving);

private:
    struct Save {
        std::shared_ptr<Document> document;
        QUrl url;
        QUrl urlBefore;
        SignatureCare care;
        quint64 state = 0; ///< of the document's undo manager
        Completion completion;
        std::vector<Waiter> waiters;
    };

    std::vector<Save>::const_iterator find(const Document& document) const;
    void finish(const Document& document, const DocumentWriter::Result& result);

    std::vector<Save> m_saves;
    DocumentWriter m_writer;
};
