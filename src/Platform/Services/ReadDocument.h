#pragma once

#include "Document.h"
#include "DocumentError.h"
#include "FileStamp.h"

#include <QString>
#include <QUrl>

#include <optional>

/// What was read of a file on another thread, for a document to take.
struct ReadDocument {
    std::optional<DocumentError> error; ///< why nothing was read
    Document::Filling fill;
    std::optional<FileStamp> stamp; ///< from before the reading: what is written from then on is another's change
    QString canonicalPath;          ///< see FilePath

    /// Any thread; takes as long as the disk does.
    [[nodiscard]] static ReadDocument from(const QUrl& url, const Document::Reading& reading);
    /// Main thread, once. Throws DocumentError, also when nothing was read.
    void putInto(Document& document, const QUrl& url) const;

    // The same for a file of another kind, which `reading` converts. It may be a folder.

    [[nodiscard]] static ReadDocument fromImport(const QUrl& url, const Document::Reading& reading);
    void importInto(Document& document, const QUrl& url) const;
};
