#include "EngineContext.h"

#include <malloc.h>

#include <array>
#include <atomic>
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

std::atomic<std::size_t> allocated{0};

thread_local const fz_cookie* memoryStop = nullptr;

bool isStopped() {
    return memoryStop && __atomic_load_n(&memoryStop->abort, __ATOMIC_RELAXED) != 0;
}

void* limitedMalloc(void*, std::size_t size) {
    if (size > largestBlock || isStopped() || allocated.load(std::memory_order_relaxed) + size > totalLimit)
        return nullptr;
    void* block = std::malloc(size);
    if (block)
        allocated.fetch_add(malloc_usable_size(block), std::memory_order_relaxed);
    return block;
}

void limitedFree(void*, void* block) {
    if (!block)
        return;
    allocated.fetch_sub(malloc_usable_size(block), std::memory_order_relaxed);
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
    if (size > largestBlock || isStopped() ||
        (size > before && allocated.load(std::memory_order_relaxed) + (size - before) > totalLimit))
        return nullptr;
    void* moved = std::realloc(block, size);
    if (moved)
        allocated.fetch_add(malloc_usable_size(moved) - before, std::memory_order_relaxed);
    return moved;
}

void ignoreMessage(void*, const char*) {}

} // namespace

/// Recursive, since the engine compares the keys of its store under its lock for memory, and comparing objects of files
/// with several sections asks for memory.
struct EngineInstance::Locks {
    std::array<std::recursive_mutex, FZ_LOCK_MAX> mutexes;

    static void lock(void* user, int index) { static_cast<Locks*>(user)->mutexes.at(std::size_t(index)).lock(); }
    static void unlock(void* user, int index) { static_cast<Locks*>(user)->mutexes.at(std::size_t(index)).unlock(); }
};

std::size_t engineBytes() {
    return allocated.load(std::memory_order_relaxed);
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
