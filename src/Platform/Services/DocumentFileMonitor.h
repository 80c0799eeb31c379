#pragma once

#include "FileStamp.h"

#include <QFileSystemWatcher>
#include <QObject>
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
    /// by deleting it first.
    static constexpr std::chrono::milliseconds settlingTime{400};

    /// `controller` and `presenter` must outlive the monitor.
    DocumentFileMonitor(DocumentController& controller, DocumentPresenter& presenter, QObject* parent = nullptr);
    ~DocumentFileMonitor() override;

    /// Looks at all files, for when the user comes back: some file systems tell of no change.
    void checkAll();

private:
    struct Watched {
        QString path;                      ///< empty for an untitled document
        std::optional<FileStamp> lastSeen; ///< none while there is no file
        bool isGone = false;               ///< the user has been told
        std::optional<FileStamp> stampWhenGone;
        /// The undo manager's state that the file held; none when not all was in the file.
        std::optional<quint64> savedStateWhenGone;
    };

    void watch(const std::shared_ptr<Document>& document);
    void forget(const std::shared_ptr<Document>& document);
    void updatePaths();
    void scheduleCheck();
    /// False when the file is still changing.
    bool check(const std::shared_ptr<Document>& document, Watched& watched);
    void fileIsGone(const std::shared_ptr<Document>& document, Watched& watched);
    void fileIsBack(Document& document, Watched& watched);

    DocumentController& m_controller;
    DocumentPresenter& m_presenter;
    QFileSystemWatcher m_watcher;
    QTimer m_settling;
    std::map<std::shared_ptr<Document>, Watched> m_watched;
};
