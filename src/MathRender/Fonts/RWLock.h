#pragma once

#include <shared_mutex>

/// A lock for many readers or one writer. Not recursive.
class RWLock {
public:
    void readLock() { m_mutex.lock_shared(); }
    void writeLock() {
        m_mutex.lock();
        m_isWriting = true;
    }
    /// Ends what the calling thread locked last, reading or writing.
    void unlock() {
        if (m_isWriting) {
            m_isWriting = false;
            m_mutex.unlock();
        } else {
            m_mutex.unlock_shared();
        }
    }

private:
    std::shared_mutex m_mutex; // of the standard library, as the thread sanitizer sees this one
    bool m_isWriting = false;  ///< changed by the writer alone, while nobody reads
};
