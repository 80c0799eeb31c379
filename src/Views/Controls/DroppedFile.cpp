#include "DroppedFile.h"

#include <QDir>
#include <QFileInfo>
#include <QStandardPaths>
#include <QTemporaryDir>

static QStringList temporaryFolders() {
    return {QDir::tempPath(), QStringLiteral("/tmp"), QStringLiteral("/var/tmp"),
            QStandardPaths::writableLocation(QStandardPaths::RuntimeLocation),
            QStandardPaths::writableLocation(QStandardPaths::GenericCacheLocation)};
}

bool DroppedFile::isInTemporaryFolder(const QUrl& url) {
    const QString path = QFileInfo(url.toLocalFile()).canonicalFilePath();
    for (const QString& folder : temporaryFolders()) {
        const QString canonicalFolder = QFileInfo(folder).canonicalFilePath();
        if (!canonicalFolder.isEmpty() && path.startsWith(canonicalFolder + QLatin1Char('/')))
            return true;
    }
    return false;
}

std::optional<QUrl> DroppedFile::keep(const QUrl& url) {
    const QString path = url.toLocalFile();
    if (!isInTemporaryFolder(url) || QFileInfo(path).isDir())
        return url;
    QTemporaryDir folder(QDir::tempPath() + QStringLiteral("/quillo-drop-XXXXXX"));
    const QString copy = folder.filePath(QFileInfo(path).fileName());
    if (!folder.isValid() || !QFile::copy(path, copy))
        return std::nullopt;
    folder.setAutoRemove(false);
    return QUrl::fromLocalFile(copy);
}
