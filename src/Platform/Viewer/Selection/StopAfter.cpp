#include "StopAfter.h"

#include <condition_variable>
#include <mutex>

StopAfter::StopAfter(std::chrono::milliseconds time)
    : m_timer([this, time](const std::stop_token& ended) {
          std::mutex mutex;
          std::unique_lock lock(mutex);
          if (!std::condition_variable_any().wait_for(lock, ended, time, [&ended] { return ended.stop_requested(); }))
              m_stop.request_stop();
      }) {}
