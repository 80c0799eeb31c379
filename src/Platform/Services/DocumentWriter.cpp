#include "DocumentWriter.h"

#include "DocumentSnapshot.h"

#include <exception>
#include <utility>

static DocumentWriter::Result written(const DocumentSnapshot& snapshot, const QString& path) {
    try {
        snapshot.write(path);
        return {std::nullopt, FileStamp::of(path)};
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
                           Completion completion) {
    auto work = [this, snapshot = std::move(snapshot), path, completion = std::move(completion)]() mutable {
        const Result result = written(*snapshot, path);
        // The snapshot travels along, so that the thread that made it destroys it.
        auto report = [snapshot = std::move(snapshot), completion = std::move(completion), result] {
            completion(result);
        };
        QMetaObject::invokeMethod(this, std::move(report), Qt::QueuedConnection);
    };
    m_threads.start(std::move(work));
}
