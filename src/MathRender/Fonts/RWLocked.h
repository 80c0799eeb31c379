#pragma once

#include "RWLock.h"

#include <utility>

/// A value that several threads share, reached only under its lock. What the functions get must not outlive them, and
/// they must not ask for the same value again.
template <typename Value>
class RWLocked {
public:
    RWLocked() = default;
    explicit RWLocked(Value value) : m_value(std::move(value)) {}

    /// Calls `use` with the value, at the same time as other readers, and returns what it returns.
    template <typename Use>
    auto read(Use&& use) const {
        m_lock.readLock();
        const Unlocking unlocking{m_lock};
        return std::forward<Use>(use)(m_value);
    }

    /// Calls `change` with the value while nobody else has it, and returns what it returns.
    template <typename Change>
    auto write(Change&& change) {
        m_lock.writeLock();
        const Unlocking unlocking{m_lock};
        return std::forward<Change>(change)(m_value);
    }

private:
    struct Unlocking {
        RWLock& lock;
        ~Unlocking() { lock.unlock(); }
    };

    mutable RWLock m_lock;
    Value m_value{};
};
