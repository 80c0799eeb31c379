#include "SessionFolder.h"

#include <QDateTime>
#include <QDir>
#include <QFileInfo>
#include <QTemporaryDir>
#include <QUuid>

#include <utility>

#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

static QString lockName() {
    return QStringLiteral("/lock");
}

/// Not open when another program holds it, or when there is none.
static std::unique_ptr<Descriptor> takeLock(const QString& folder, int flags) {
    constexpr mode_t forOwner = 0600;
    auto lock = std::make_unique<Descriptor>(
        open(QFile::encodeName(folder + lockName()).constData(), O_RDWR | O_CLOEXEC | O_NOFOLLOW | flags, forOwner));
    if (lock->isOpen() && flock(lock->number(), LOCK_EX | LOCK_NB) != 0)
        return std::make_unique<Descriptor>(-1);
    return lock;
}

SessionFolder::SessionFolder(QString prefix) : m_prefix(std::move(prefix)) {}

SessionFolder::~SessionFolder() {
    remove();
}

void SessionFolder::remove() {
    const std::lock_guard guard(m_mutex);
    if (!m_path.isEmpty())
        QDir(m_path).removeRecursively();
    m_path.clear();
    m_lock.reset();
}

QString SessionFolder::path() {
    if (!m_path.isEmpty())
        return m_path;
    QTemporaryDir made(QDir::tempPath() + QLatin1Char('/') + m_prefix + QStringLiteral("-XXXXXX"));
    if (!made.isValid())
        return {};
    m_lock = takeLock(made.path(), O_CREAT);
    made.setAutoRemove(!m_lock->isOpen());
    if (m_lock->isOpen())
        m_path = made.path();
    return m_path;
}

QString SessionFolder::makeFolder() {
    const std::lock_guard guard(m_mutex);
    if (path().isEmpty())
        return {};
    const QString folder = m_path + QLatin1Char('/') + QUuid::createUuid().toString(QUuid::WithoutBraces);
    return QDir().mkdir(folder) ? folder : QString();
}

void SessionFolder::removeAbandoned(const QString& prefix) {
    constexpr qint64 secondsToMakeLock = 60;
    const QDir temporary(QDir::tempPath());
    const QFileInfoList folders =
        temporary.entryInfoList({prefix + QStringLiteral("-??????")}, QDir::Dirs | QDir::NoSymLinks | QDir::Hidden);
    for (const QFileInfo& folder : folders) {
        if (folder.ownerId() != geteuid())
            continue;
        const bool hasLock = QFileInfo::exists(folder.filePath() + lockName());
        const bool isNew = folder.lastModified().secsTo(QDateTime::currentDateTime()) < secondsToMakeLock;
        const std::unique_ptr<Descriptor> lock = takeLock(folder.filePath(), 0);
        if (lock->isOpen() || (!hasLock && !isNew))
            QDir(folder.filePath()).removeRecursively();
    }
}
