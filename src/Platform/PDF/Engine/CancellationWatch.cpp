#include "CancellationWatch.h"

#include <algorithm>
#include <chrono>
#include <condition_variable>
#include <ctime>
#include <mutex>
#include <thread>
#include <vector>

#include <pthread.h>

namespace {

using Clock = std::chrono::steady_clock;

/// A thread that waits for a disk or for a busy machine may take so many times its limit by the clock on the wall.
constexpr int waitingFactor = 4;

/// The processor's time that a thread has used, for the thread with this clock, which lives.
std::chrono::nanoseconds usedTime(clockid_t clock) {
    timespec used{};
    clock_gettime(clock, &used);
    return std::chrono::seconds(used.tv_sec) + std::chrono::nanoseconds(used.tv_nsec);
}

/// When the calling thread has worked enough.
class TimeLimit {
public:
    explicit TimeLimit(CancellationWatch::Limit limit) {
        if (!limit)
            return;
        m_end = Clock::now() + waitingFactor * *limit;
        if (pthread_getcpuclockid(pthread_self(), &m_clock) == 0)
            m_mostUsed = usedTime(m_clock) + *limit;
    }
    /// Any thread may ask, as long as the one lives that made it.
    [[nodiscard]] bool isReached() const {
        return Clock::now() >= m_end || (m_mostUsed && usedTime(m_clock) >= *m_mostUsed);
    }

private:
    clockid_t m_clock{};
    std::optional<std::chrono::nanoseconds> m_mostUsed;
    Clock::time_point m_end = Clock::time_point::max();
};

class Watcher {
public:
    static Watcher& instance() {
        static auto* const watcher = new Watcher; // as long as the process: workers may end after static destruction
        return *watcher;
    }

    void add(const std::atomic<bool>* cancelled, fz_cookie* cookie, const TimeLimit& limit) {
        const std::lock_guard guard(m_mutex);
        if (!m_running) {
            std::thread([this] { run(); }).detach();
            m_running = true;
        }
        m_watched.push_back({cancelled, cookie, limit});
        m_wake.notify_one();
    }

    void remove(const fz_cookie* cookie) {
        const std::lock_guard guard(m_mutex);
        m_watched.erase(std::remove_if(m_watched.begin(), m_watched.end(),
                                       [cookie](const Entry& entry) { return entry.cookie == cookie; }),
                        m_watched.end());
    }

private:
    struct Entry {
        const std::atomic<bool>* cancelled;
        fz_cookie* cookie;
        TimeLimit limit;
    };

    [[nodiscard]] static bool shallStop(const Entry& entry) {
        return (entry.cancelled && entry.cancelled->load(std::memory_order_relaxed)) || entry.limit.isReached();
    }

    void run() {
        std::unique_lock lock(m_mutex);
        for (;;) {
            m_wake.wait(lock, [this] { return !m_watched.empty(); });
            // Asleep, and not to be woken by each new page of a document that is read through.
            lock.unlock();
            std::this_thread::sleep_for(std::chrono::milliseconds(25));
            lock.lock();
            for (const Entry& entry : m_watched)
                if (shallStop(entry))
                    __atomic_store_n(&entry.cookie->abort, 1, __ATOMIC_RELAXED);
        }
    }

    std::mutex m_mutex;
    std::condition_variable m_wake;
    std::vector<Entry> m_watched;
    bool m_running = false;
};

} // namespace

CancellationWatch::CancellationWatch(const std::atomic<bool>* cancelled, fz_cookie* cookie, Limit limit)
    : m_cookie(cookie), m_outer(setMemoryStop(cookie)), m_watched(cancelled || limit) {
    if (m_watched)
        Watcher::instance().add(cancelled, cookie, TimeLimit(limit));
}

CancellationWatch::~CancellationWatch() {
    setMemoryStop(m_outer);
    if (m_watched)
        Watcher::instance().remove(m_cookie);
}
