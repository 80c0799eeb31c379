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
    m_cancelled = std::make_shared<std::atomic<bool>>(false);
    m_thread.start([work = std::move(work), cancelled = m_cancelled] {
        if (!*cancelled)
            work(*cancelled);
    });
}

void BackgroundTask::cancel() {
    if (m_cancelled)
        *m_cancelled = true;
}
