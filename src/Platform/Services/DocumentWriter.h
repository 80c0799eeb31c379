#pragma once

#include "DocumentError.h"
#include "FileStamp.h"

#include <QObject>
#include <QThreadPool>

#include <functional>
#include <memory>
#include <optional>

class DocumentSnapshot;

/// Writes snapshots to files on threads of its own, several at a time. Main thread only.
///
/// What comes of a write is told by an event of its own, so it is told in the midst of any nested event loop too.
class DocumentWriter : public QObject {
    Q_OBJECT

public:
    struct Result {
        std::optional<DocumentError> error; ///< none when the file is safely on the disk
        std::optional<FileStamp> stamp;     ///< of the written file
    };
    using Completion = std::function<void(const Result& result)>;

    explicit DocumentWriter(QObject* parent = nullptr);

    /// Waits until all that was begun is written. The completions that are still due are not called.
    ~DocumentWriter() override;

    /// Replaces the file that is at `path` when the writing begins, and none that comes there meanwhile; with
    /// `expected` only the one with that stamp.
    void write(std::shared_ptr<const DocumentSnapshot> snapshot, const QString& path,
               const std::optional<FileStamp>& expected, Completion completion);

private:
    QThreadPool m_threads;
};
