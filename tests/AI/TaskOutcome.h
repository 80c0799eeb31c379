#pragma once

#include <QCoroTask>

#include <exception>
#include <optional>
#include <string>

/// How a task ended.
template <typename T>
struct TaskOutcome {
    std::optional<T> value;
    std::string sentence; ///< the `what()` of an exception
};

/// Runs an event loop until the task ends.
template <typename T>
TaskOutcome<T> outcomeOf(QCoro::Task<T> task) {
    TaskOutcome<T> outcome;
    const auto note = [](QCoro::Task<T> ended, TaskOutcome<T>& noted) -> QCoro::Task<> {
        try {
            noted.value = co_await ended;
        } catch (const std::exception& error) {
            noted.sentence = error.what();
        }
    };
    QCoro::waitFor(note(std::move(task), outcome));
    return outcome;
}
