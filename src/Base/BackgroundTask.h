#pragma once

#include <QThreadPool>

#include <atomic>
#include <functional>
#include <memory>

/// One piece of work at a time off the main thread. Main thread only, apart from the work itself.
class BackgroundTask {
public:
    /// The work looks at `cancelled` between its steps and returns early when it is set.
    using Work = std::function<void(const std::atomic<bool>& cancelled)>;

    BackgroundTask();
    /// Cancels what runs and waits for it, so work may use whatever outlives this object.
    ~BackgroundTask();
    BackgroundTask(const BackgroundTask&) = delete;
    BackgroundTask& operator=(const BackgroundTask&) = delete;

    /// Cancels what runs and starts `work` after it, without waiting.
    void start(Work work);
    /// Returns at once; the work ends soon after.
    void cancel();

private:
    QThreadPool m_thread;
    std::shared_ptr<std::atomic<bool>> m_cancelled;
};
