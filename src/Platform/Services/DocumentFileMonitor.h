#pragma once

#include "FileStamp.h"

#include <QElapsedTimer>
#include <QFileSystemWatcher>
#include <QObject>
#include <QSet>
#include <QTimer>

#include <chrono>
#include <map>
#include <memory>
#include <optional>

class Document;
class DocumentController;
class DocumentPresenter;

/// Notices when another program changes, renames or deletes the file of an open document. A document without changes is
/// read again, and one with changes is asked about; it follows a file that is renamed in its folder; one whose file is
/// gone counts as edited, so that it isn't closed without a question. Main thread only.
class DocumentFileMonitor : public QObject {
    Q_OBJECT

public:
    /// A file is looked at when nothing has happened to it for that long: programs write in pieces, and replace a file
    /// by deleting it first. Tests shorten it.
    static std::chrono::milliseconds settlingTime;

    /// A file that is gone or isn't whole has that long to come back or to be finished before anyone is told.
    static constexpr std::chrono::milliseconds usualPatience{3'000};

    /// `controller` and `presenter` must outlive the monitor.
    DocumentFileMonitor(DocumentController& controller, DocumentPresenter& presenter,
                        std::chrono::milliseconds patience = usualPatience, QObject* parent = nullptr);
    ~DocumentFileMonitor() override;

    /// Looks at all files, for when the user comes back: some file systems tell of no change.
    void checkAll();

private:
    struct Watched {
        QString path;                      ///< empty for an untitled document
        std::optional<FileStamp> lastSeen; ///< none while there is no file
        QElapsedTimer unchangedFor;
        std::optional<FileStamp> unfinished; ///< the version that couldn't be read yet
        std::optional<FileStamp> missed;     ///< the version that is gone, when the user has been told
        bool isLookedAt = false;             ///< by another thread, now
    };
    /// What another thread has found.
    struct Seen {
        std::optional<FileStamp> stamp; ///< none where there is no file
        bool isWhole = true;
        QString renamed; ///< what became of a file that is gone; empty when that isn't known
    };

    void watch(const std::shared_ptr<Document>& document);
    void forget(const std::shared_ptr<Document>& document);
    void updatePaths();
    void scheduleCheck();
    void watchIfThere(const QString& path);
    void look(const std::shared_ptr<Document>& document, Watched& watched);
    /// False when the file is still changing.
    bool check(const std::shared_ptr<Document>& document, Watched& watched, const Seen& seen);
    void fileIsGone(const std::shared_ptr<Document>& document, Watched& watched, const QString& renamed);

    DocumentController& m_controller;
    DocumentPresenter& m_presenter;
    const std::chrono::milliseconds m_patience;
    QFileSystemWatcher m_watcher;
    QSet<QString> m_wanted; ///< files and folders that are to be watched where they exist
    QTimer m_settling;
    std::map<std::shared_ptr<Document>, Watched> m_watched;
};
