#include "DroppedFile.h"

#include "FileStamp.h"

#include <QDateTime>
#include <QDir>
#include <QFileInfo>
#include <QMutex>
#include <QStandardPaths>
#include <QTemporaryDir>

#include <list>
#include <memory>

namespace {

class Copies {
public:
    ~Copies() {
        for (const Copy& copy : m_copies)
            copy.folder->setAutoRemove(FileStamp::of(copy.path) == copy.stamp);
    }

    void add(std::unique_ptr<QTemporaryDir> folder, const QString& path) {
        const QMutexLocker lock(&m_mutex);
        m_copies.push_back({std::move(folder), path, FileStamp::of(path)});
    }

private:
    struct Copy {
        std::unique_ptr<QTemporaryDir> folder;
        QString path;
        std::optional<FileStamp> stamp;
    };

    QMutex m_mutex;
    std::list<Copy> m_copies;
};

QStringList temporaryFolders() {
    return {QDir::tempPath(), QStringLiteral("/tmp"), QStringLiteral("/var/tmp"),
            QStandardPaths::writableLocation(QStandardPaths::GenericCacheLocation)};
}

} // namespace

bool DroppedFile::isMadeForDrop(const QUrl& url) {
    constexpr qint64 secondsOfDrop = 120; // an archive may be unpacked meanwhile
    constexpr QFile::Permissions others =
        QFile::ReadGroup | QFile::WriteGroup | QFile::ExeGroup | QFile::ReadOther | QFile::WriteOther | QFile::ExeOther;
    const QString path = QFileInfo(url.toLocalFile()).canonicalFilePath();
    for (const QString& temporary : temporaryFolders()) {
        const QString root = QFileInfo(temporary).canonicalFilePath() + QLatin1Char('/');
        const qsizetype end = path.indexOf(QLatin1Char('/'), root.size());
        if (root.size() == 1 || !path.startsWith(root) || end < 0)
            continue;
        const QFileInfo folder(path.left(end));
        QDateTime made = folder.birthTime();
        if (!made.isValid()) // not every file system knows it
            made = folder.metadataChangeTime();
        if (!(folder.permissions() & others) && made.secsTo(QDateTime::currentDateTime()) < secondsOfDrop)
            return true;
    }
    return false;
}

std::optional<QUrl> DroppedFile::keep(const QUrl& url) {
    static Copies copies;
    const QString path = url.toLocalFile();
    if (QFileInfo(path).isDir() || !isMadeForDrop(url))
        return url;
    auto folder = std::make_unique<QTemporaryDir>(QDir::tempPath() + QStringLiteral("/quillo-drop-XXXXXX"));
    const QString copy = folder->filePath(QFileInfo(path).fileName());
    if (!folder->isValid() || !QFile::copy(path, copy))
        return std::nullopt;
    copies.add(std::move(folder), copy);
    return QUrl::fromLocalFile(copy);
}
