#pragma once

#include <QCoroTask>

#include <chrono>
#include <functional>
#include <stop_token>

/// The threads on which pages are drawn and recognized: two, where there are as many processors, so that short work for
/// the windows never waits behind a page. Main thread only, apart from the work itself.
namespace RecognitionWorkers {

/// How many pieces of work run at once.
[[nodiscard]] int count();

/// Looks at `stop` between its steps and returns early when that is requested. It may go on for a while after those who
/// asked for it have gone, so it holds what it uses.
using Work = std::function<void(const std::stop_token& stop)>;

/// Runs the work on one of the threads. True once it has ended; false when it failed, as soon as `stop` is requested or
/// the program quits, or when it took longer than `limit`: its thread is given up then, and another takes its place.
[[nodiscard]] QCoro::Task<bool> run(Work work, std::stop_token stop, std::chrono::milliseconds limit);

} // namespace RecognitionWorkers
