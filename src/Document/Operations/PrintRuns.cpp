#include "PrintRuns.h"

#include "AtomicFile.h"
#include "ErrorSentence.h"

#include <QFutureWatcher>
#include <QtConcurrentRun>

#include <utility>

namespace {

/// What came of composing: the bytes, or a sentence why there are none.
struct Composed {
    QByteArray bytes;
    QString failure;
};

/// Writes the file at `path` as well, where there is one. Any thread.
Composed compose(const PrintCopy& copy, const QString& path) {
    try {
        const QByteArray bytes = copy.bytes();
        if (!path.isEmpty())
            writeFileAtomically(path, bytes);
        return {bytes, {}};
    } catch (...) {
        return {{}, sentenceOfCurrentError("preparing a copy for the printer")};
    }
}

} // namespace

PrintRuns& PrintRuns::shared() {
    static PrintRuns runs;
    return runs;
}

void PrintRuns::start(const PrintOrder& order, std::function<void(const QString& failure)> ended) {
    const auto run = m_names.insert(m_names.end(), order.documentName);
    const auto end = [this, run, ended = std::move(ended)](const QString& failure) { this->end(run, failure, ended); };
    auto* watcher = new QFutureWatcher<Composed>(this);
    connect(watcher, &QFutureWatcher<Composed>::finished, this, [this, watcher, order, end] {
        watcher->deleteLater();
        const Composed composed = watcher->future().takeResult();
        if (composed.failure.isEmpty() && order.path.isEmpty())
            order.job.submit(composed.bytes, this, end);
        else
            end(composed.failure);
    });
    watcher->setFuture(QtConcurrent::run([copy = order.copy, path = order.path] { return compose(copy, path); }));
}

void PrintRuns::end(Names::iterator run, const QString& failure,
                    const std::function<void(const QString& failure)>& ended) {
    m_names.erase(run);
    ended(failure);
    if (isIdle())
        Q_EMIT becameIdle();
}
