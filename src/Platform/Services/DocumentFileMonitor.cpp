#include "DocumentFileMonitor.h"

#include "Document.h"
#include "DocumentController.h"
#include "DocumentPresenter.h"

#include <QDirIterator>
#include <QFileInfo>
#include <QSet>

#include <utility>
#include <vector>

/// A folder with more entries isn't searched for a file that was renamed.
static constexpr int mostEntries = 2000; // each is looked up while the user waits

DocumentFileMonitor::DocumentFileMonitor(DocumentController& controller, DocumentPresenter& presenter,
                                         std::chrono::milliseconds patience, QObject* parent)
    : QObject(parent), m_controller(controller), m_presenter(presenter), m_patience(patience) {
    m_settling.setSingleShot(true);
    m_settling.setInterval(settlingTime);
    connect(&m_settling, &QTimer::timeout, this, &DocumentFileMonitor::checkAll);
    connect(&m_watcher, &QFileSystemWatcher::fileChanged, this, &DocumentFileMonitor::scheduleCheck);
    connect(&m_watcher, &QFileSystemWatcher::directoryChanged, this, &DocumentFileMonitor::scheduleCheck);
    connect(&m_controller, &DocumentController::documentAdded, this, &DocumentFileMonitor::watch);
    connect(&m_controller, &DocumentController::documentRemoved, this, &DocumentFileMonitor::forget);
    connect(&m_controller, &DocumentController::documentSavingChanged, this, &DocumentFileMonitor::scheduleCheck);
    for (const auto& document : m_controller.documents())
        watch(document);
}

DocumentFileMonitor::~DocumentFileMonitor() = default;

void DocumentFileMonitor::watch(const std::shared_ptr<Document>& document) {
    m_watched[document];
    connect(document.get(), &Document::fileURLChanged, this, &DocumentFileMonitor::updatePaths);
    updatePaths();
}

void DocumentFileMonitor::forget(const std::shared_ptr<Document>& document) {
    disconnect(document.get(), nullptr, this, nullptr);
    m_watched.erase(document);
    updatePaths();
}

/// Watches the files and their folders: a file that is replaced is no longer the one that was watched.
void DocumentFileMonitor::updatePaths() {
    QSet<QString> wanted;
    for (auto& [document, watched] : m_watched) {
        const QString path = document->fileURL().toLocalFile();
        if (path != watched.path) {
            watched = {path, FileStamp::of(path), {}, {}, false};
            watched.unchangedFor.start();
        }
        if (path.isEmpty())
            continue;
        const QFileInfo file(path);
        for (const QString& each : {path, file.absolutePath()})
            if (QFileInfo::exists(each))
                wanted.insert(each);
    }
    const QStringList before = m_watcher.files() + m_watcher.directories();
    const QSet<QString> now(before.begin(), before.end());
    const QSet<QString> old = now - wanted;
    const QSet<QString> fresh = wanted - now;
    if (!old.isEmpty())
        m_watcher.removePaths(old.values());
    if (!fresh.isEmpty())
        m_watcher.addPaths(fresh.values());
}

void DocumentFileMonitor::scheduleCheck() {
    m_settling.start();
}

void DocumentFileMonitor::checkAll() {
    m_settling.stop();
    std::vector<std::shared_ptr<Document>> documents; // a question may close some
    for (const auto& entry : m_watched)
        documents.push_back(entry.first);
    bool isSettled = true;
    for (const auto& document : documents) {
        const auto found = m_watched.find(document);
        if (found != m_watched.end() && !found->second.path.isEmpty())
            isSettled &= check(document, found->second);
    }
    updatePaths();
    if (!isSettled)
        scheduleCheck();
}

bool DocumentFileMonitor::check(const std::shared_ptr<Document>& document, Watched& watched) {
    if (m_controller.isSaving(*document))
        return true; // its end is told
    const std::optional<FileStamp> stamp = FileStamp::of(watched.path);
    const bool isStable = stamp == std::exchange(watched.lastSeen, stamp);
    if (!isStable)
        watched.unchangedFor.restart();
    if (stamp == document->fileStamp()) {
        if (stamp && std::exchange(watched.isGone, false))
            document->findFile();
        return true;
    }
    if (!isStable)
        return false;
    const bool mayChangeYet = !watched.unchangedFor.hasExpired(m_patience.count());
    if (!stamp) {
        if (mayChangeYet && !watched.isGone)
            return false;
        if (!watched.isGone)
            fileIsGone(document, watched);
        return true;
    }
    watched.isGone = false;
    if (!document->fileStamp()) {
        document->setFileStamp(stamp); // it wasn't known what the file was like
        return true;
    }
    if (mayChangeYet && watched.unfinished == stamp)
        return false;
    watched.unfinished = stamp;
    return m_controller.fileWasChanged(document, *stamp, mayChangeYet);
}

/// The name of the file in that folder that has that place on the disk; none when there is none.
static std::optional<QString> fileWithInode(const QString& folder, const FileStamp& sought) {
    QDirIterator entries(folder, QDir::Files | QDir::Hidden | QDir::NoSymLinks);
    for (int count = 0; entries.hasNext() && count < mostEntries; ++count) {
        const QString path = entries.next();
        const std::optional<FileStamp> stamp = FileStamp::of(path);
        if (stamp && stamp->device == sought.device && stamp->inode == sought.inode)
            return path;
    }
    return std::nullopt;
}

void DocumentFileMonitor::fileIsGone(const std::shared_ptr<Document>& document, Watched& watched) {
    const QString name = document->displayName();
    if (document->fileStamp()) {
        const auto renamed = fileWithInode(QFileInfo(watched.path).absolutePath(), *document->fileStamp());
        if (renamed && !m_controller.documentForURL(QUrl::fromLocalFile(*renamed))) {
            const std::optional<FileStamp> stamp = document->fileStamp();
            document->setFileURL(QUrl::fromLocalFile(*renamed)); // which changes `watched`
            document->setFileStamp(stamp);
            m_presenter.presentNotice(document,
                                      QStringLiteral("“%1” is now called “%2”.").arg(name, document->displayName()));
            return;
        }
    }
    watched.isGone = true;
    document->loseFile();
    m_presenter.presentNotice(
        document, QStringLiteral("“%1” was moved or deleted by another program. Save it to put it back.").arg(name));
}
