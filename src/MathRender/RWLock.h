#pragma once

#include <QReadWriteLock>

/// A lock for many readers or one writer. Not recursive.
class RWLock {
public:
    void readLock() { m_lock.lockForRead(); }
    void writeLock() { m_lock.lockForWrite(); }
    /// Ends what the calling thread locked last, reading or writing.
    void unlock() { m_lock.unlock(); }

private:
    QReadWriteLock m_lock;
};
