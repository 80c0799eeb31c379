#include "ReadDocument.h"

#include "FilePath.h"

#include <QFileInfo>

#include <exception>

static void refuseUnreadable(const QUrl& url) {
    if (!url.isLocalFile())
        throw DocumentError(QStringLiteral("Only files on this computer can be opened."));
    const QFileInfo file(url.toLocalFile());
    if (!file.exists())
        throw DocumentError(QStringLiteral("The file doesn't exist."));
    if (file.isDir())
        throw DocumentError(QStringLiteral("It is a folder."));
    if (!file.isReadable())
        throw DocumentError(QStringLiteral("You don't have permission to read it."));
}

ReadDocument ReadDocument::from(const QUrl& url, const Document::Reading& reading) {
    ReadDocument read;
    try {
        read.canonicalPath = FilePath::canonical(url);
        refuseUnreadable(url);
        read.stamp = FileStamp::of(url.toLocalFile());
        read.fill = reading();
    } catch (const std::exception& error) {
        read.error = DocumentError::from(error);
    }
    return read;
}

void ReadDocument::putInto(Document& document, const QUrl& url) const {
    if (error)
        throw DocumentError(*error);
    fill(document);
    document.becomeFile(url, stamp);
}
