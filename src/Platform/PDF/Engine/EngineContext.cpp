#include "EngineContext.h"

#include <malloc.h>

#include <algorithm>
#include <array>
#include <atomic>
#include <cstddef>
#include <cstdlib>
#include <mutex>
#include <utility>

namespace {

/// Decoded fonts and pictures of one opened document that may stay in memory for reuse.
constexpr std::size_t storeBytes = std::size_t(24) << 20;
/// No well-made page needs a block larger than this; a hostile one asks for it.
constexpr std::size_t largestBlock = std::size_t(768) << 20;
/// All that the engine may hold at once. Past it the engine empties its store and then gives up on the page.
constexpr std::size_t totalLimit = std::size_t(2) << 30;

std::atomic<std::ptrdiff_t> allocated{0};

/// What this thread has taken, less what it gave back, since it last told the others. Telling them of each block would
/// have threads wait for each other's caches.
thread_local std::ptrdiff_t unsettled = 0;
thread_local bool isThreadEnding = false;

void settle() {
    allocated.fetch_add(std::exchange(unsettled, 0), std::memory_order_relaxed);
}

struct LastSettlement {
    bool isDue = false;
    ~LastSettlement() {
        settle();
        isThreadEnding = true; // what is freed after this is told at once
    }
};
thread_local LastSettlement lastSettlement;

void account(std::ptrdiff_t bytes) {
    if (unsettled == 0 && !isThreadEnding)
        lastSettlement.isDue = true; // the first use lets it run at the end
    unsettled += bytes;
    constexpr std::ptrdiff_t step = std::ptrdiff_t(64) << 10;
    if (unsettled > step || unsettled < -step || isThreadEnding)
        settle();
}

bool isPastLimit(std::size_t more) {
    return allocated.load(std::memory_order_relaxed) + std::ptrdiff_t(more) > std::ptrdiff_t(totalLimit);
}

thread_local const fz_cookie* memoryStop = nullptr;

bool isStopped() {
    return memoryStop && __atomic_load_n(&memoryStop->abort, __ATOMIC_RELAXED) != 0;
}

void* limitedMalloc(void*, std::size_t size) {
    if (size > largestBlock || isStopped() || isPastLimit(size))
        return nullptr;
    void* block = std::malloc(size);
    if (block)
        account(std::ptrdiff_t(malloc_usable_size(block)));
    return block;
}

void limitedFree(void*, void* block) {
    if (!block)
        return;
    account(-std::ptrdiff_t(malloc_usable_size(block)));
    std::free(block);
}

void* limitedRealloc(void* user, void* block, std::size_t size) {
    if (!block)
        return limitedMalloc(user, size);
    if (size == 0) {
        limitedFree(user, block);
        return nullptr;
    }
    const std::size_t before = malloc_usable_size(block);
    if (size > largestBlock || isStopped() || (size > before && isPastLimit(size - before)))
        return nullptr;
    void* moved = std::realloc(block, size);
    if (moved)
        account(std::ptrdiff_t(malloc_usable_size(moved)) - std::ptrdiff_t(before));
    return moved;
}

void ignoreMessage(void*, const char*) {}

} // namespace

/// One of the engine's locks. Recursive, since the engine compares the keys of its store under its lock for memory, and
/// comparing objects of files with several sections asks for memory. The engine locks for every glyph and block, hardly
/// ever while another thread does, so what counts is that taking a free one costs next to nothing.
class EngineLock {
public:
    void lock() {
        const void* self = &unsettled; // another one in each thread
        if (m_owner.load(std::memory_order_relaxed) == self) {
            ++m_depth;
            return;
        }
        int free = 0;
        if (!m_state.compare_exchange_strong(free, taken, std::memory_order_acquire))
            while (m_state.exchange(wanted, std::memory_order_acquire) != 0)
                m_state.wait(wanted, std::memory_order_relaxed);
        m_owner.store(self, std::memory_order_relaxed);
    }

    void unlock() {
        if (m_depth > 0) {
            --m_depth;
            return;
        }
        m_owner.store(nullptr, std::memory_order_relaxed);
        if (m_state.exchange(0, std::memory_order_release) == wanted)
            m_state.notify_one();
    }

private:
    static constexpr int taken = 1;
    static constexpr int wanted = 2; // and another thread waits

    std::atomic<int> m_state{0};
    std::atomic<const void*> m_owner{nullptr};
    int m_depth = 0; // of the owner's locks beyond the first
};

struct EngineInstance::Locks {
    std::array<EngineLock, FZ_LOCK_MAX> locks;

    static void lock(void* user, int index) { static_cast<Locks*>(user)->locks[std::size_t(index)].lock(); }
    static void unlock(void* user, int index) { static_cast<Locks*>(user)->locks[std::size_t(index)].unlock(); }
};

std::size_t engineBytes() {
    return std::size_t(std::max<std::ptrdiff_t>(0, allocated.load(std::memory_order_relaxed)));
}

const fz_cookie* setMemoryStop(const fz_cookie* cookie) {
    return std::exchange(memoryStop, cookie);
}

EngineInstance::EngineInstance() : m_locks(std::make_unique<Locks>()) {
    const fz_alloc_context allocator{nullptr, limitedMalloc, limitedRealloc, limitedFree};
    const fz_locks_context locks{m_locks.get(), Locks::lock, Locks::unlock};
    m_base = fz_new_context(&allocator, &locks, storeBytes);
}

EngineInstance::~EngineInstance() {
    fz_drop_context(m_base);
}

fz_context* EngineInstance::newContext() const {
    const std::lock_guard guard(m_cloning);
    fz_context* context = m_base ? fz_clone_context(m_base) : nullptr;
    if (context) {
        fz_set_warning_callback(context, ignoreMessage, nullptr);
        fz_set_error_callback(context, ignoreMessage, nullptr);
    }
    return context;
}

void EngineInstance::emptyStore() const {
    const EngineContext context(*this);
    if (context.get())
        fz_empty_store(context.get());
}

bool engineCall(fz_context* context, void (*body)(void*), void* data, std::string* message) {
    volatile bool done = false;
    fz_try(context) {
        body(data);
        done = true;
    }
    fz_catch(context) {
        if (message)
            *message = fz_caught_message(context);
    }
    return done;
}
