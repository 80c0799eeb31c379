#pragma once

#include "EngineContext.h"

#include <atomic>

/// Passes a caller's wish to stop on to the engine while a page is being drawn. The engine looks at a plain integer of
/// its own; one thread for the process carries the wishes over, a few times in a tenth of a second.
class CancellationWatch {
public:
    /// `cancelled` may be null: then nothing is watched. Both must outlive the watch.
    CancellationWatch(const std::atomic<bool>* cancelled, fz_cookie* cookie);
    ~CancellationWatch();
    CancellationWatch(const CancellationWatch&) = delete;
    CancellationWatch& operator=(const CancellationWatch&) = delete;

private:
    fz_cookie* m_cookie;
    bool m_watched;
};
