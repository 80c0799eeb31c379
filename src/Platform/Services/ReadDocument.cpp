#include "ReadDocument.h"

#include "FilePath.h"

#include <QFileInfo>

#include <exception>

enum class Folders { refused, read };

static void refuseUnreadable(const QUrl& url, Folders folders) {
    if (!url.isLocalFile())
        throw DocumentError(QStringLiteral("Only files on this computer can be opened."));
    const QFileInfo file(url.toLocalFile());
    if (!file.exists())
        throw DocumentError(QStringLiteral("The file doesn't exist."));
    if (file.isDir() && folders == Folders::refused)
        throw DocumentError(QStringLiteral("It is a folder."));
    if (!file.isReadable())
        throw DocumentError(QStringLiteral("You don't have permission to read it."));
}

static ReadDocument readFrom(const QUrl& url, const Document::Reading& reading, Folders folders) {
    ReadDocument read;
    try {
        read.canonicalPath = FilePath::canonical(url);
        refuseUnreadable(url, folders);
        read.stamp = FileStamp::of(url.toLocalFile());
        read.fill = reading();
    } catch (const std::exception& error) {
        read.error = DocumentError::from(error);
    }
    return read;
}

ReadDocument ReadDocument::from(const QUrl& url, const Document::Reading& reading) {
    return readFrom(url, reading, Folders::refused);
}

ReadDocument ReadDocument::fromImport(const QUrl& url, const Document::Reading& reading) {
    return readFrom(url, reading, Folders::read);
}

void ReadDocument::putInto(Document& document, const QUrl& url) const {
    if (error)
        throw DocumentError(*error);
    fill(document);
    document.becomeFile(url, stamp);
}

void ReadDocument::importInto(Document& document, const QUrl& url) const {
    if (error)
        throw DocumentError(*error);
    fill(document);
    document.becomeImport(url);
}
