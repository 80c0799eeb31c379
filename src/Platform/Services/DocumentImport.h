#pragma once

#include "Document.h"

#include <QString>
#include <QUrl>

#include <functional>
#include <stop_token>

/// How a file of another kind fills a document.
struct DocumentImport {
    QUrl source;

    /// Converts it, and reads what it has become. Any thread, also after the document is gone. Throws DocumentError;
    /// ends within a moment of `stop`.
    std::function<Document::Filling(const std::stop_token& stop)> read;

    QString failureTitle; ///< of what the user is told when that fails
};
