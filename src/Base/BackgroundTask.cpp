#include "BackgroundTask.h"

BackgroundTask::BackgroundTask() {
    m_thread.setMaxThreadCount(1);
}

BackgroundTask::~BackgroundTask() {
    cancel();
    m_thread.waitForDone();
}

void BackgroundTask::start(Work work) {
    cancel();
    m_stop = std::stop_source();
    m_thread.start([work = std::move(work), stop = m_stop.get_token()] {
        if (!stop.stop_requested())
            work(stop);
    });
}

void BackgroundTask::cancel() {
    m_stop.request_stop();
}
