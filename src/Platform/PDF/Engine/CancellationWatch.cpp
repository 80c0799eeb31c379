#include "CancellationWatch.h"

#include <algorithm>
#include <chrono>
#include <condition_variable>
#include <mutex>
#include <thread>
#include <vector>

namespace {

using Clock = std::chrono::steady_clock;

class Watcher {
public:
    static Watcher& instance() {
        static auto* const watcher = new Watcher; // as long as the process: workers may end after static destruction
        return *watcher;
    }

    void add(const std::atomic<bool>* cancelled, fz_cookie* cookie, Clock::time_point end) {
        const std::lock_guard guard(m_mutex);
        if (!m_running) {
            std::thread([this] { run(); }).detach();
            m_running = true;
        }
        m_watched.push_back({cancelled, cookie, end});
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
        Clock::time_point end;
    };

    [[nodiscard]] static bool shallStop(const Entry& entry) {
        return (entry.cancelled && entry.cancelled->load(std::memory_order_relaxed)) || Clock::now() >= entry.end;
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
        Watcher::instance().add(cancelled, cookie, limit ? Clock::now() + *limit : Clock::time_point::max());
}

CancellationWatch::~CancellationWatch() {
    setMemoryStop(m_outer);
    if (m_watched)
        Watcher::instance().remove(m_cookie);
}
