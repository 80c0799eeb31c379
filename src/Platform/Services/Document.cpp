#include "Document.h"

#include "AtomicFile.h"
#include "DocumentSnapshot.h"
#include "FileError.h"
#include "UndoManager.h"

#include <QFileInfo>

#include <exception>
#include <set>
#include <utility>

/// The numbers of the living untitled documents.
static std::set<int>& untitledNumbers() {
    static std::set<int> numbers;
    return numbers;
}

namespace {

class BytesSnapshot : public DocumentSnapshot {
public:
    explicit BytesSnapshot(QByteArray bytes) : m_bytes(std::move(bytes)) {}

    FileStamp write(const QString& path, const std::optional<FileStamp>& expected) const override {
        try {
            return writeFileAtomically(path, m_bytes, expected);
        } catch (const FileError& error) {
            std::throw_with_nested(DocumentError(error));
        }
    }

private:
    const QByteArray m_bytes;
};

} // namespace

static int takeUntitledNumber() {
    int number = 1;
    while (!untitledNumbers().insert(number).second)
        ++number;
    return number;
}

Document::Document(QObject* parent) : QObject(parent), m_undoManager(std::make_shared<UndoManager>()) {
    connect(m_undoManager.get(), &UndoManager::documentEditedChanged, this, &Document::documentEditedChanged);
}

Document::~Document() {
    untitledNumbers().erase(m_untitledNumber);
}

void Document::setFileURL(const QUrl& fileURL) {
    if (fileURL == m_fileURL)
        return;
    const QString oldName = displayName();
    m_fileURL = fileURL;
    m_fileStamp.reset();
    if (!m_fileURL.isEmpty()) {
        m_importedFrom.clear();
        untitledNumbers().erase(m_untitledNumber);
        m_untitledNumber = 0;
    }
    Q_EMIT fileURLChanged(m_fileURL);
    if (displayName() != oldName)
        Q_EMIT displayNameChanged(displayName());
}

void Document::becomeFile(const QUrl& url, const std::optional<FileStamp>& stamp) {
    setFileURL(url);
    setFileStamp(stamp);
    m_lostState.reset();
    m_hasGivenUpSignatures = false;
    m_undoManager->removeAllActions();
    m_undoManager->markSaved();
}

void Document::becomeImport(const QUrl& url) {
    becomeFile({}, std::nullopt);
    m_importedFrom = url;
    setUntitledName(QFileInfo(url.adjusted(QUrl::StripTrailingSlash).fileName()).completeBaseName());
}

void Document::becomeSaved(const QUrl& url, const std::optional<FileStamp>& stamp, quint64 savedState) {
    setFileURL(url);
    setFileStamp(stamp);
    m_lostState.reset();
    m_undoManager->markSaved(savedState);
}

void Document::loseFile() {
    if (!isDocumentEdited())
        m_lostState = m_undoManager->state();
    m_undoManager->markEdited();
}

void Document::findFile() {
    if (!hasUserChanges())
        m_undoManager->markSaved();
}

void Document::keepInPlaceOf(const FileStamp& stamp) {
    setFileStamp(stamp);
    m_lostState.reset();
    m_undoManager->markEdited(); // undoing doesn't lead back to what is in the file
}

bool Document::hasUserChanges() const {
    return isDocumentEdited() && m_undoManager->state() != m_lostState;
}

QString Document::displayName() const {
    if (!m_fileURL.isEmpty())
        return m_fileURL.fileName();
    if (!m_untitledName.isEmpty())
        return m_untitledName;
    if (m_untitledNumber == 0)
        m_untitledNumber = takeUntitledNumber();
    if (m_untitledNumber == 1)
        return QStringLiteral("Untitled");
    return QStringLiteral("Untitled %1").arg(m_untitledNumber);
}

void Document::setUntitledName(const QString& name) {
    const QString oldName = displayName();
    m_untitledName = name;
    if (!name.isEmpty()) {
        untitledNumbers().erase(m_untitledNumber);
        m_untitledNumber = 0;
    }
    if (displayName() != oldName)
        Q_EMIT displayNameChanged(displayName());
}

QString Document::suggestedFileName() const {
    if (!m_fileURL.isEmpty() || fileNameExtension().isEmpty())
        return displayName();
    return displayName() + QLatin1Char('.') + fileNameExtension();
}

void Document::setBeingTyped(bool typed) {
    if (std::exchange(m_isBeingTyped, typed) != typed)
        Q_EMIT beingTypedChanged(typed);
}

void Document::commitEditing() {
    Q_EMIT commitEditingRequested();
}

void Document::read(const QUrl& url) {
    reading(url)()(*this);
}

bool Document::isDocumentEdited() const {
    return m_undoManager->isDocumentEdited();
}

Document::WholeCheck Document::wholeCheck() const {
    return [](const QUrl&) { return true; };
}

std::shared_ptr<const DocumentSnapshot> Document::snapshot(SignatureCare /*care*/) const {
    return std::make_shared<BytesSnapshot>(dataRepresentation());
}

void Document::write(const QString& path) const {
    snapshot(SignatureCare::giveUp)->write(path, std::nullopt);
}

QString Document::fileNameExtension() const {
    return {};
}
