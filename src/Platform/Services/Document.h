#pragma once

#include "DocumentError.h"

#include <QByteArray>
#include <QObject>
#include <QString>
#include <QUrl>

#include <memory>

class UndoManager;

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
    void setFileURL(const QUrl& fileURL);

    /// The file's name with its extension; for an untitled document "Untitled", "Untitled 2", …, the first that no
    /// other living document has.
    QString displayName() const;

    /// `displayName()`, for an untitled document with the extension of its kind.
    QString suggestedFileName() const;

    /// Never null. Its edited mark is the document's.
    std::shared_ptr<UndoManager> undoManager() const { return m_undoManager; }

    bool isDocumentEdited() const;

    /// True while a view holds what the user is just typing and hasn't put it into the document yet.
    bool isBeingTyped() const { return m_isBeingTyped; }
    void setBeingTyped(bool typed);
    /// Asks the views to put what they hold into the document, as before it is saved or closed.
    void commitEditing();

    /// Fills the document with the file's content. Throws DocumentError.
    virtual void read(const QUrl& url) = 0;

    /// The bytes of the file that a save now would write. Throws DocumentError.
    virtual QByteArray dataRepresentation() const = 0;

    /// Writes the document to the file at `path`, replacing a file that is there, without changing `fileURL()` or the
    /// edited mark. The file must change at once or not at all (see AtomicFile.h); so does this one, with
    /// `dataRepresentation()`. Throws DocumentError.
    virtual void write(const QString& path) const;

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
    std::shared_ptr<UndoManager> m_undoManager;
    bool m_isBeingTyped = false;
    /// 1 stands for "Untitled", 2 for "Untitled 2"; 0 while none was needed.
    mutable int m_untitledNumber = 0;
};
