#pragma once

#include "FileStamp.h"

#include <QDateTime>
#include <QString>

#include <optional>

/// What a recovery record tells of its document apart from the bytes.
struct RecoveryDescription {
    QString displayName;
    QString originalPath; ///< absolute; empty for a document that was never saved
    QString importedPath; ///< of the file that an untitled document was made of; empty for none
    /// The stamp of the original when it was last read or saved; none when unknown. Only its size and its time are
    /// recorded: the others may be new ones each time the machine starts.
    std::optional<FileStamp> originalStamp;
    QDateTime writeTime; ///< to the millisecond
    int pageCount = 0;
    int pageIndex = 0; ///< the page that the reader was on, zero-based
};
