#pragma once

#include "FileStamp.h"

#include <QString>

#include <optional>

/// Whether a digital signature in the document's file is worth more than what is to be written.
enum class SignatureCare { keep, giveUp };

/// A document as it was at one moment, to be written while the live one goes on changing. Immutable; one thread at a
/// time.
class DocumentSnapshot {
public:
    virtual ~DocumentSnapshot() = default;

    /// Writes the file at `path`, replacing a file that is there. It changes at once or not at all (see AtomicFile.h).
    /// With `expected`, no other file than that one is replaced. Blocks until the bytes are safely on the disk and
    /// gives the stamp of the written file. Throws DocumentError. Any thread.
    virtual FileStamp write(const QString& path, const std::optional<FileStamp>& expected) const = 0;
};
