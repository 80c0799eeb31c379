#pragma once

#include <chrono>
#include <stop_token>
#include <thread>

/// Requests a stop once the time has passed.
class StopAfter {
public:
    /// What a person who clicked waits gladly.
    static constexpr std::chrono::milliseconds patience{400};

    explicit StopAfter(std::chrono::milliseconds time = patience);
    [[nodiscard]] std::stop_token token() const { return m_stop.get_token(); }

private:
    std::stop_source m_stop;
    std::jthread m_timer; // last: it ends first
};
