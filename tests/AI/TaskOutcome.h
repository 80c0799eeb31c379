#pragma once

#include <QCoroTask>
#include <QEventLoop>

#include <exception>
#include <optional>
#include <string>

/// How a task ended.
template <typename T>
struct TaskOutcome {
    std::optional<T> value;
    std::exception_ptr exception;

    /// The `what()` of the exception; empty if there was none.
    [[nodiscard]] std::string sentence() const {
        try {
            if (exception)
                std::rethrow_exception(exception);
        } catch (const std::exception& error) {
            return error.what();
        }
        return {};
    }
};

template <typename T>
QCoro::Task<> noteOutcome(QCoro::Task<T> task, TaskOutcome<T>& outcome, QEventLoop& loop) {
    try {
        outcome.value = co_await task;
    } catch (...) {
        outcome.exception = std::current_exception();
    }
    loop.quit();
}

/// Runs an event loop until the task ends.
template <typename T>
TaskOutcome<T> outcomeOf(QCoro::Task<T> task) {
    TaskOutcome<T> outcome;
    QEventLoop loop;
    const auto noting = noteOutcome(std::move(task), outcome, loop);
    if (!noting.isReady())
        loop.exec();
    return outcome;
}
