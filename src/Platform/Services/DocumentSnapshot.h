#pragma once

#include <QString>

/// A document as it was at one moment, to be written while the live one goes on changing. Immutable; one thread at a
/// time.
class DocumentSnapshot {
public:
    virtual ~DocumentSnapshot() = default;

    /// Writes the file at `path`, replacing a file that is there. It changes at once or not at all (see AtomicFile.h).
    /// Blocks until the bytes are safely on the disk. Throws DocumentError. Any thread.
    virtual void write(const QString& path) const = 0;
};
