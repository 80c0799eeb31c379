#pragma once

#include "EngineContext.h"

#include <atomic>
#include <chrono>
#include <optional>

/// Passes a caller's wish to stop on to the engine while it works on a page, and stops it by itself after some time: a
/// few lines of a file can ask for more work than anybody will wait for. The engine looks at a plain integer of its
/// own; one thread for the process carries the wishes over, a few times in a tenth of a second. It lives on the thread
/// that works (`setMemoryStop`).
class CancellationWatch {
public:
    using Limit = std::optional<std::chrono::milliseconds>;

    /// `cancelled` may be null: then only time stops the engine. Both must outlive the watch. `limit` is what the
    /// thread may work from now on, in time of the processor, so that a page is cut short by no other program's work; a
    /// thread that only waits is stopped some time later. Without a limit, time stops nothing.
    CancellationWatch(const std::atomic<bool>* cancelled, fz_cookie* cookie, Limit limit = std::nullopt);
    ~CancellationWatch();
    CancellationWatch(const CancellationWatch&) = delete;
    CancellationWatch& operator=(const CancellationWatch&) = delete;

private:
    fz_cookie* m_cookie;
    const fz_cookie* m_outer; // what stopped the thread's memory before
    bool m_watched;
};
