#include "FilePath.h"

#include <QDir>
#include <QFileInfo>
#include <QUrl>

QString FilePath::absolute(const QUrl& url) {
    return url.isLocalFile() ? QDir::cleanPath(QFileInfo(url.toLocalFile()).absoluteFilePath()) : QString();
}

QString FilePath::canonical(const QUrl& url) {
    if (!url.isLocalFile())
        return {};
    const QFileInfo file(url.toLocalFile());
    if (QString path = file.canonicalFilePath(); !path.isEmpty())
        return path;
    const QString folder = QFileInfo(file.absolutePath()).canonicalFilePath();
    return folder.isEmpty() ? file.absoluteFilePath() : QDir(folder).filePath(file.fileName());
}
