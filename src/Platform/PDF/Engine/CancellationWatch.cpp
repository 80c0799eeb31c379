#include "CancellationWatch.h"

#include <algorithm>
#include <chrono>
#include <condition_variable>
#include <mutex>
#include <thread>
#include <vector>

namespace {

class Watcher {
public:
    static Watcher& instance() {
        static auto* const watcher = new Watcher; // as long as the process: workers may end after static destruction
        return *watcher;
    }

    void add(const std::atomic<bool>* cancelled, fz_cookie* cookie) {
        const std::lock_guard guard(m_mutex);
        if (!m_running) {
            std::thread([this] { run(); }).detach();
            m_running = true;
        }
        m_watched.push_back({cancelled, cookie});
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
    };

    void run() {
        std::unique_lock lock(m_mutex);
        for (;;) {
            m_wake.wait(lock, [this] { return !m_watched.empty(); });
            m_wake.wait_for(lock, std::chrono::milliseconds(25));
            for (const Entry& entry : m_watched)
                if (entry.cancelled->load(std::memory_order_relaxed))
                    __atomic_store_n(&entry.cookie->abort, 1, __ATOMIC_RELAXED);
        }
    }

    std::mutex m_mutex;
    std::condition_variable m_wake;
    std::vector<Entry> m_watched;
    bool m_running = false;
};

} // namespace

CancellationWatch::CancellationWatch(const std::atomic<bool>* cancelled, fz_cookie* cookie)
    : m_cookie(cookie), m_watched(cancelled != nullptr) {
    if (m_watched)
        Watcher::instance().add(cancelled, cookie);
}

CancellationWatch::~CancellationWatch() {
    if (m_watched)
        Watcher::instance().remove(m_cookie);
}
