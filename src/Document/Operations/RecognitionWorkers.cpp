#include "RecognitionWorkers.h"

#include "Logging.h"

#include <QCoreApplication>
#include <QCoroFuture>
#include <QPointer>
#include <QPromise>
#include <QThread>
#include <QThreadPool>
#include <QTimer>

#include <algorithm>
#include <atomic>
#include <memory>
#include <mutex>
#include <vector>

#include <malloc.h>

namespace {

using Clock = std::chrono::steady_clock;

/// The threads in use. They belong to the application, whose end waits for them: the recognizer mustn't run while the
/// program's static objects go.
QPointer<QThreadPool>& currentThreads() {
    static QPointer<QThreadPool> threads;
    return threads;
}

QThreadPool& threads() {
    QPointer<QThreadPool>& current = currentThreads();
    if (!current) {
        // Pictures of whole pages get memory of their own, and give it back; the heap would grow around them instead.
        constexpr int leastOwnMemory = 1 << 21; // bytes
        mallopt(M_MMAP_THRESHOLD, leastOwnMemory);
        current = new QThreadPool(QCoreApplication::instance());
        current->setMaxThreadCount(RecognitionWorkers::count());
    }
    return *current;
}

/// Nobody waits any more for threads of which one doesn't end. Work of others on them goes on.
void giveUp(const QPointer<QThreadPool>& stuck) {
    static std::vector<QThreadPool*> givenUp; // never deleted, for that would wait
    QPointer<QThreadPool>& current = currentThreads();
    if (!stuck || stuck != current)
        return;
    stuck->setParent(nullptr);
    givenUp.push_back(stuck);
    current.clear();
}

/// A piece of work as its thread and those who wait for it see it. It ends once, by whichever comes first.
class Piece {
public:
    Piece() { m_promise.start(); }

    [[nodiscard]] QFuture<bool> future() { return m_promise.future(); }
    [[nodiscard]] std::stop_token stopToken() const { return m_stop.get_token(); }

    void run(const RecognitionWorkers::Work& work) {
        m_begun = Clock::now().time_since_epoch().count();
        bool isDone = false;
        try {
            work(m_stop.get_token());
            isDone = !m_stop.stop_requested();
        } catch (const std::exception& error) {
            qCWarning(Logging::document) << "recognizing a page failed:" << Logging::causes(error);
        }
        // Pictures of pages leave the heap in pieces, of which the next thread may use none.
        malloc_trim(0);
        end(isDone);
    }

    void end(bool isDone) {
        std::call_once(m_ended, [this, isDone] {
            m_promise.addResult(isDone);
            m_promise.finish();
        });
    }

    void stop() {
        m_stop.request_stop();
        end(false);
    }

    /// Not while it waits for a thread.
    [[nodiscard]] bool isOverdue(std::chrono::milliseconds limit) const {
        const Clock::rep begun = m_begun;
        return begun != 0 && Clock::now().time_since_epoch() - Clock::duration(begun) > limit;
    }

private:
    QPromise<bool> m_promise;
    std::once_flag m_ended;
    std::stop_source m_stop;
    std::atomic<Clock::rep> m_begun = 0;
};

} // namespace

int RecognitionWorkers::count() {
    constexpr int most = 2; // each takes some hundred megabytes for a large page
    return std::clamp(QThread::idealThreadCount(), 1, most);
}

QCoro::Task<bool> RecognitionWorkers::run(Work work, std::stop_token stop, std::chrono::milliseconds limit) {
    constexpr std::chrono::milliseconds look(100);
    const auto piece = std::make_shared<Piece>();
    QFuture<bool> ended = piece->future();
    const std::stop_callback stopped(stop, [piece] { piece->stop(); });
    const QPointer<QThreadPool> pool(&threads());
    QTimer clock;
    QObject::connect(qApp, &QCoreApplication::aboutToQuit, &clock, [piece] { piece->stop(); });
    QObject::connect(&clock, &QTimer::timeout, &clock, [piece, limit, pool] {
        if (!piece->isOverdue(limit) || piece->stopToken().stop_requested())
            return;
        qCWarning(Logging::document) << "a page took too long to recognize";
        giveUp(pool);
        piece->stop();
    });
    clock.start(look);
    pool->start([piece, work = std::move(work)] { piece->run(work); });
    co_return co_await ended;
}
