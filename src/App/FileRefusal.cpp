#include "FileRefusal.h"

#include <QFileInfo>
#include <QUrl>

FileRefusal FileRefusal::of(const QUrl& url) {
    const QString name = url.fileName().isEmpty() ? url.toDisplayString() : url.fileName();
    const QFileInfo file(url.toLocalFile());
    QString sentence = QStringLiteral("“%1” isn't a PDF. Quillo opens PDF files only so far.");
    if (!url.isLocalFile())
        sentence = QStringLiteral("“%1” isn't a file on this computer.");
    else if (!file.exists())
        sentence = QStringLiteral("There is no file “%1”.");
    else if (file.isDir())
        sentence = QStringLiteral("“%1” is a folder.");
    return {QStringLiteral("“%1” can't be opened.").arg(name), sentence.arg(name)};
}
