#include "DocumentFileMonitor.h"

#include "Document.h"
#include "DocumentController.h"
#include "DocumentPresenter.h"
#include "FileWork.h"

#include <QDirIterator>
#include <QFileInfo>
#include <QPointer>

#include <utility>

std::chrono::milliseconds DocumentFileMonitor::settlingTime{400};

/// A folder with more entries isn't searched for a file that was renamed.
static constexpr int mostEntries = 2000;

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
    m_wanted.clear();
    for (auto& [document, watched] : m_watched) {
        const QString path = document->fileURL().toLocalFile();
        if (path != watched.path) {
            watched = {path, document->fileStamp(), {}, {}, {}, false};
            watched.unchangedFor.start();
        }
        if (!path.isEmpty())
            m_wanted << path << QFileInfo(path).absolutePath();
    }
    const QStringList before = m_watcher.files() + m_watcher.directories();
    const QSet<QString> now(before.begin(), before.end());
    const QSet<QString> old = now - m_wanted;
    if (!old.isEmpty())
        m_watcher.removePaths(old.values());
    for (const QString& path : m_wanted - now)
        watchIfThere(path);
}

void DocumentFileMonitor::watchIfThere(const QString& path) {
    FileWork::run(
        this, [path] { return QFileInfo::exists(path); },
        [this, path](bool exists) {
            if (!exists || !m_wanted.contains(path) || m_watcher.files().contains(path) ||
                m_watcher.directories().contains(path))
                return;
            m_watcher.addPath(path);
            scheduleCheck(); // it may have changed since it was read
        });
}

void DocumentFileMonitor::scheduleCheck() {
    m_settling.start();
}

void DocumentFileMonitor::checkAll() {
    m_settling.stop();
    for (auto& [document, watched] : m_watched)
        if (!watched.path.isEmpty() && !watched.isLookedAt)
            look(document, watched);
    updatePaths();
}

/// The name of the file in that folder that is that version; empty when there is none. A file in its place on the disk
/// alone won't do: a file system soon gives the place of one that was deleted to another.
static QString fileWithStamp(const QString& folder, const FileStamp& sought) {
    QDirIterator entries(folder, QDir::Files | QDir::Hidden | QDir::NoSymLinks);
    for (int count = 0; entries.hasNext() && count < mostEntries; ++count) {
        QString path = entries.next();
        if (FileStamp::of(path) == sought)
            return path;
    }
    return {};
}

void DocumentFileMonitor::look(const std::shared_ptr<Document>& document, Watched& watched) {
    watched.isLookedAt = true;
    const auto work = [url = document->fileURL(), path = watched.path, known = document->fileStamp(),
                       looksWhole = document->wholeCheck()] {
        Seen seen{FileStamp::of(path), true, {}};
        if (seen.stamp && seen.stamp != known)
            seen.isWhole = looksWhole(url);
        else if (!seen.stamp && known)
            seen.renamed = fileWithStamp(QFileInfo(path).absolutePath(), *known);
        return seen;
    };
    FileWork::run(
        this, work,
        [this, which = std::weak_ptr(document), path = watched.path, known = document->fileStamp()](const Seen& seen) {
            const std::shared_ptr<Document> open = which.lock();
            const auto found = m_watched.find(open);
            if (!open || found == m_watched.end() || found->second.path != path)
                return;
            found->second.isLookedAt = false;
            // What was seen before a save is no news.
            if (open->fileStamp() != known || !check(open, found->second, seen))
                scheduleCheck();
            updatePaths();
        });
}

bool DocumentFileMonitor::check(const std::shared_ptr<Document>& document, Watched& watched, const Seen& seen) {
    if (m_controller.isSaving(*document))
        return true; // its end is told
    const std::optional<FileStamp>& stamp = seen.stamp;
    const bool isStable = stamp == std::exchange(watched.lastSeen, stamp);
    if (!isStable)
        watched.unchangedFor.restart();
    if (stamp == document->fileStamp()) {
        if (stamp && std::exchange(watched.missed, std::nullopt) == stamp)
            document->findFile();
        return true;
    }
    if (!isStable)
        return false;
    const bool mayChangeYet = !watched.unchangedFor.hasExpired(m_patience.count());
    if (!stamp) {
        if (watched.missed == document->fileStamp())
            return true; // what a save put there since is another version
        if (mayChangeYet)
            return false;
        fileIsGone(document, watched, seen.renamed);
        return true;
    }
    watched.missed.reset();
    if (!document->fileStamp()) {
        document->setFileStamp(stamp); // it wasn't known what the file was like
        return true;
    }
    if (mayChangeYet && watched.unfinished == stamp)
        return false;
    watched.unfinished = stamp;
    if (mayChangeYet && !seen.isWhole)
        return false;
    m_controller.fileWasChanged(document, *stamp, mayChangeYet, [monitor = QPointer(this)] {
        if (monitor)
            monitor->scheduleCheck();
    });
    return true;
}

void DocumentFileMonitor::fileIsGone(const std::shared_ptr<Document>& document, Watched& watched,
                                     const QString& renamed) {
    const QString name = document->displayName();
    if (!renamed.isEmpty() && !m_controller.documentForURL(QUrl::fromLocalFile(renamed))) {
        const std::optional<FileStamp> stamp = document->fileStamp();
        document->setFileURL(QUrl::fromLocalFile(renamed)); // which changes `watched`
        document->setFileStamp(stamp);
        m_presenter.presentNotice(document,
                                  QStringLiteral("“%1” is now called “%2”.").arg(name, document->displayName()));
        return;
    }
    watched.missed = document->fileStamp();
    document->loseFile();
    m_presenter.presentNotice(
        document, QStringLiteral("“%1” was moved or deleted by another program. Save it to put it back.").arg(name));
}
