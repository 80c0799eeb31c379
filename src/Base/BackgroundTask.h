#pragma once

#include <QThreadPool>

#include <functional>
#include <stop_token>

/// One piece of work at a time off the main thread. Main thread only, apart from the work itself.
class BackgroundTask {
public:
    /// The work looks at `stop` between its steps and returns early when that is requested.
    using Work = std::function<void(const std::stop_token& stop)>;

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
    std::stop_source m_stop; // of the work started last
};
