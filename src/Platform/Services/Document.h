#pragma once

#include "DocumentError.h"
#include "FileStamp.h"

#include <QByteArray>
#include <QObject>
#include <QString>
#include <QUrl>

#include <functional>
#include <memory>
#include <optional>

class DocumentSnapshot;
class UndoManager;
enum class SignatureCare;

/// An open document: a file, or a new document that has no file yet. What it holds is up to the derived class.
/// Shared through std::shared_ptr; main thread only.
class Document : public QObject {
    Q_OBJECT
    Q_PROPERTY(QUrl fileURL READ fileURL WRITE setFileURL NOTIFY fileURLChanged)
    Q_PROPERTY(QString displayName READ displayName NOTIFY displayNameChanged)
    Q_PROPERTY(bool documentEdited READ isDocumentEdited NOTIFY documentEditedChanged)

public:
    explicit Document(QObject* parent = nullptr);
    ~Document() override;

    /// Empty while the document is untitled.
    QUrl fileURL() const { return m_fileURL; }
    /// Another file has no stamp until it is given one.
    void setFileURL(const QUrl& fileURL);

    /// The file of another kind that an untitled document was made of, and which it leaves as it is; empty for none,
    /// and once the document has a file of its own.
    QUrl importedFrom() const { return m_importedFrom; }
    /// The file that the user knows the document by, and what is remembered of it: its own, or what it was made of.
    QUrl originURL() const { return m_fileURL.isEmpty() ? m_importedFrom : m_fileURL; }

    /// The file as this document last read or wrote it; a file with another stamp was changed by another program. None
    /// when that isn't known.
    const std::optional<FileStamp>& fileStamp() const { return m_fileStamp; }
    void setFileStamp(const std::optional<FileStamp>& stamp) { m_fileStamp = stamp; }

    /// The document holds what the file at `url` held when it had that stamp: it takes its name and counts as saved,
    /// and what could be undone, which belongs to what it held before, is forgotten.
    void becomeFile(const QUrl& url, const std::optional<FileStamp>& stamp);

    /// The document holds what the file at `url`, of another kind, became: it is untitled, has that file's name without
    /// the extension, counts as saved, and nothing can be undone.
    void becomeImport(const QUrl& url);

    /// The document is in its file with that stamp now, as it was in the state `savedState` of its undo manager.
    void becomeSaved(const QUrl& url, const std::optional<FileStamp>& stamp, quint64 savedState);

    /// The file doesn't hold the document any more, through no doing of the user: the document counts as edited, so
    /// that it isn't closed without a question.
    void loseFile();
    /// What was lost is back: the document counts as saved, unless the user has changed it.
    void findFile();
    /// The user keeps the document although its file, which has that stamp, holds another version.
    void keepInPlaceOf(const FileStamp& stamp);
    /// True when the document holds what the user did and no file does. Unlike `isDocumentEdited()` false for one that
    /// only lost its file.
    bool hasUserChanges() const;

    /// The file's name with its extension; for an untitled document the name that it was given, or else "Untitled",
    /// "Untitled 2", …, the first that no other living document has.
    QString displayName() const;

    /// Without an extension. Counts while the document is untitled; empty for none.
    void setUntitledName(const QString& name);

    /// `displayName()`, for an untitled document with the extension of its kind.
    QString suggestedFileName() const;

    /// Never null. Its edited mark is the document's.
    std::shared_ptr<UndoManager> undoManager() const { return m_undoManager; }

    bool isDocumentEdited() const;

    /// True once the user has let the signatures go that the document's file had when it was read.
    bool hasGivenUpSignatures() const { return m_hasGivenUpSignatures; }
    void giveUpSignatures() { m_hasGivenUpSignatures = true; }

    /// True while a view holds what the user is just typing and hasn't put it into the document yet.
    bool isBeingTyped() const { return m_isBeingTyped; }
    void setBeingTyped(bool typed);
    /// Asks the views to put what they hold into the document, as before it is saved or closed.
    void commitEditing();

    /// Puts what was read of a file into the document that was asked for its reading, or another of its class; once, on
    /// the main thread. Throws DocumentError, and then the document is as it was.
    using Filling = std::function<void(Document& document)>;
    /// What takes long about reading a file: for any thread, also after the document is gone. Throws DocumentError.
    using Reading = std::function<Filling()>;
    [[nodiscard]] virtual Reading reading(const QUrl& url) const = 0;
    /// Fills the document with the file's content here and now. Throws DocumentError.
    void read(const QUrl& url);

    /// False for a file of which a part is missing, as while another program writes it. Looks at little of it, and at
    /// nothing of a document: for any thread.
    using WholeCheck = bool (*)(const QUrl& url);
    [[nodiscard]] virtual WholeCheck wholeCheck() const;

    /// The bytes of the file that a save now would write. Throws DocumentError.
    virtual QByteArray dataRepresentation() const = 0;

    /// The present state, to be written on another thread while this document goes on changing. Never null. Throws
    /// DocumentError. This one holds `dataRepresentation()`; a document that takes long to put together overrides it.
    /// With `SignatureCare::keep` writing it fails with `DocumentError::breaksSignatures` where it would break one.
    virtual std::shared_ptr<const DocumentSnapshot> snapshot(SignatureCare care) const;

    /// Writes the present state to the file at `path` and returns when it is there, without changing `fileURL()` or the
    /// edited mark. Throws DocumentError; see `DocumentSnapshot::write`.
    void write(const QString& path) const;

    /// The file name extension of this kind of document, without the dot. Empty if there is none.
    virtual QString fileNameExtension() const;

Q_SIGNALS:
    void fileURLChanged(const QUrl& fileURL);
    void displayNameChanged(const QString& displayName);
    void documentEditedChanged(bool edited);
    void beingTypedChanged(bool typed);
    void commitEditingRequested();

private:
    QUrl m_fileURL;
    QUrl m_importedFrom;
    std::optional<FileStamp> m_fileStamp;
    QString m_untitledName;
    std::shared_ptr<UndoManager> m_undoManager;
    /// The state of the undo manager that the file held when it was lost.
    std::optional<quint64> m_lostState;
    bool m_isBeingTyped = false;
    bool m_hasGivenUpSignatures = false;
    /// 1 stands for "Untitled", 2 for "Untitled 2"; 0 while none was needed.
    mutable int m_untitledNumber = 0;
};
