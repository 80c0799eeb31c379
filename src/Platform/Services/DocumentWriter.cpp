#include "DocumentWriter.h"

#include "DesktopThumbnails.h"
#include "DocumentSnapshot.h"
#include "FileError.h"

#include <exception>
#include <utility>

static DocumentWriter::Result written(const DocumentSnapshot& snapshot, const QString& path,
                                      const std::optional<FileStamp>& expected) {
    try {
        // Putting the file together may take long, so what can be known before is asked before.
        const std::optional<FileStamp> found = FileStamp::of(path);
        if (found && expected && found != expected)
            throw DocumentError(FileChangedError(*found));
        const FileStamp stamp = snapshot.write(path, found);
        DesktopThumbnails::forget(path);
        return {std::nullopt, stamp};
    } catch (const std::exception& error) {
        return {DocumentError::from(error), std::nullopt};
    }
}

DocumentWriter::DocumentWriter(QObject* parent) : QObject(parent) {
    // They wait for the disk more than they compute, and a disk that doesn't answer must not hold up the others.
    constexpr int threadCount = 8;
    m_threads.setMaxThreadCount(threadCount);
}

DocumentWriter::~DocumentWriter() {
    m_threads.waitForDone();
}

void DocumentWriter::write(std::shared_ptr<const DocumentSnapshot> snapshot, const QString& path,
                           const std::optional<FileStamp>& expected, Completion completion) {
    auto work = [this, snapshot = std::move(snapshot), path, expected, completion = std::move(completion)]() mutable {
        const Result result = written(*snapshot, path, expected);
        // The snapshot travels along, so that the thread that made it destroys it.
        auto report = [snapshot = std::move(snapshot), completion = std::move(completion), result] {
            completion(result);
        };
        QMetaObject::invokeMethod(this, std::move(report), Qt::QueuedConnection);
    };
    m_threads.start(std::move(work));
}
