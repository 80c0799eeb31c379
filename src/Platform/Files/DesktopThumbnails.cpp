#include "DesktopThumbnails.h"

#include <QCryptographicHash>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QStandardPaths>
#include <QUrl>

void DesktopThumbnails::forget(const QString& path) {
    const QDir cache(QStandardPaths::writableLocation(QStandardPaths::GenericCacheLocation) +
                     QStringLiteral("/thumbnails"));
    for (const QString& name : {path, QFileInfo(path).canonicalFilePath()}) {
        const QByteArray address = QUrl::fromLocalFile(name).toEncoded(QUrl::FullyEncoded);
        const QString picture =
            QString::fromLatin1(QCryptographicHash::hash(address, QCryptographicHash::Md5).toHex()) +
            QStringLiteral(".png");
        for (const char* size : {"normal", "large", "x-large", "xx-large"})
            QFile::remove(cache.filePath(QLatin1String(size) + QLatin1Char('/') + picture));
    }
}
