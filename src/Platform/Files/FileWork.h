#pragma once

#include <QObject>

#include <chrono>
#include <functional>
#include <memory>
#include <utility>

/// Work that may wait for a disk for however long: a network that is down, a disk that doesn't answer. It runs on
/// threads that nobody waits for, not even the end of the program.
namespace FileWork {

using Result = std::shared_ptr<void>;

void start(QObject* receiver, std::function<Result()> work, std::function<void(const Result& result)> done,
           std::chrono::milliseconds patience);

/// Calls `work` on another thread and then `done` with its value on the thread of this call, from the event loop; never
/// when `receiver`, an object of this thread, is gone by then. `work` must not throw, and refers to nothing that may go
/// before the program does; `done` is destroyed on this thread. With `patience` this thread waits that long first, for
/// what is usually there at once: `done` is called before the function returns then.
template <typename Work, typename Done>
void run(QObject* receiver, Work work, Done done, std::chrono::milliseconds patience = {}) {
    using Value = decltype(work());
    start(
        receiver, [work = std::move(work)]() mutable -> Result { return std::make_shared<Value>(work()); },
        [done = std::move(done)](const Result& result) mutable { done(std::move(*static_cast<Value*>(result.get()))); },
        patience);
}

} // namespace FileWork
