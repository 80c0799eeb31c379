#include "RecoveryRecord.h"

#include "AtomicFile.h"
#include "FileError.h"

#include <QCryptographicHash>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QImageReader>
#include <QRandomGenerator>
#include <QRegularExpression>

#include <algorithm>
#include <array>
#include <cerrno>

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

constexpr QFile::Permissions userOnly = QFile::ReadOwner | QFile::WriteOwner;
constexpr QFile::Permissions userOnlyFolder = userOnly | QFile::ExeOwner;
constexpr mode_t userOnlyMode = 0600;
constexpr mode_t userOnlyFolderMode = 0700;
constexpr int maximumPictureSide = 1024;

const QString manifestName = QStringLiteral("document.json");
const QString pictureName = QStringLiteral("picture.png");
const QString lockName = QStringLiteral("lock");

QString randomId() {
    std::array<quint32, 4> words{};
    QRandomGenerator::system()->fillRange(words.data(), words.size());
    return QString::fromLatin1(
        QByteArray(reinterpret_cast<const char*>(words.data()), sizeof(words)).toHex()); // 128 bits
}

void makeFolder(const QString& path) {
    if (mkdir(QFile::encodeName(path).constData(), userOnlyFolderMode) != 0 && errno != EEXIST)
        throw FileError::forSystemError(errno);
}

/// Opens the lock file of the record at `path` and locks it. -1, with `errno`, when that can't be.
int openLock(const QString& path) {
    const QByteArray name = QFile::encodeName(path + u'/' + lockName);
    const int lock = open(name.constData(), O_RDWR | O_CREAT | O_CLOEXEC | O_NOFOLLOW | O_NONBLOCK, userOnlyMode);
    if (lock < 0)
        return -1;
    struct stat status = {};
    if (fstat(lock, &status) == 0 && S_ISREG(status.st_mode) && flock(lock, LOCK_EX | LOCK_NB) == 0)
        return lock;
    const int error = errno;
    close(lock);
    errno = error;
    return -1;
}

/// Whether the lock file of the record at `path` is the open one. It is another, or none, when the record was removed
/// between the opening and the locking.
bool isLockOf(const QString& path, int lock) {
    struct stat open = {};
    struct stat named = {};
    const QByteArray name = QFile::encodeName(path + u'/' + lockName);
    return fstat(lock, &open) == 0 && lstat(name.constData(), &named) == 0 && open.st_dev == named.st_dev &&
           open.st_ino == named.st_ino;
}

QByteArray sha256(const QByteArray& bytes) {
    return QCryptographicHash::hash(bytes, QCryptographicHash::Sha256);
}

void writeUserOnly(const QString& path, const QByteArray& bytes) {
    writeFileAtomically(path, [&bytes](QFile& file) {
        file.setPermissions(userOnly);
        file.write(bytes);
    });
}

} // namespace

RecoveryRecord::RecoveryRecord(QString path, int lock) : m_path(std::move(path)), m_lock(lock) {
    load();
}

RecoveryRecord::~RecoveryRecord() {
    close(m_lock);
}

std::unique_ptr<RecoveryRecord> RecoveryRecord::create(const QString& folder) {
    const QString parent = QFileInfo(folder).path();
    QDir().mkpath(parent); // a failure shows in the next line
    makeFolder(folder);
    QFile::setPermissions(folder, userOnlyFolder);
    synchronizeFolder(parent);

    // It gets its name when its lock is held, so nobody takes it for a lost one meanwhile.
    const QString id = randomId();
    const QString unready = folder + u'/' + newPrefix + id;
    makeFolder(unready);
    const int lock = openLock(unready);
    const QString path = folder + u'/' + id;
    if (lock < 0 || rename(QFile::encodeName(unready).constData(), QFile::encodeName(path).constData()) != 0) {
        const int error = errno;
        if (lock >= 0)
            close(lock);
        QDir(unready).removeRecursively();
        throw FileError::forSystemError(error);
    }
    synchronizeFolder(folder);
    return std::unique_ptr<RecoveryRecord>(new RecoveryRecord(path, lock));
}

std::unique_ptr<RecoveryRecord> RecoveryRecord::take(const QString& path) {
    const int lock = openLock(path);
    if (lock < 0)
        return nullptr;
    if (!isLockOf(path, lock)) {
        close(lock);
        return nullptr;
    }
    return std::unique_ptr<RecoveryRecord>(new RecoveryRecord(path, lock));
}

bool RecoveryRecord::isId(const QString& name) {
    static const QRegularExpression pattern(QStringLiteral("\\A[0-9a-f]{32}\\z"));
    return pattern.match(name).hasMatch();
}

QString RecoveryRecord::id() const {
    return QFileInfo(m_path).fileName();
}

bool RecoveryRecord::isInPlace() const {
    return isLockOf(m_path, m_lock);
}

bool RecoveryRecord::isUnfinished() const {
    return !QFileInfo::exists(filePath(manifestName));
}

QString RecoveryRecord::filePath(const QString& name) const {
    return m_path + u'/' + name;
}

void RecoveryRecord::load() {
    for (const QString& name : QDir(m_path).entryList(QDir::AllEntries | QDir::Hidden | QDir::System))
        m_lastPartNumber = std::max(m_lastPartNumber, RecoveryManifest::partNumber(name).value_or(0));
    const QFileInfo info(filePath(manifestName));
    if (!info.isFile() || info.isSymLink() || info.size() > RecoveryManifest::maximumEncodedSize)
        return;
    QFile file(info.filePath());
    if (!file.open(QIODevice::ReadOnly))
        return;
    m_manifest = RecoveryManifest::decoded(file.read(RecoveryManifest::maximumEncodedSize));
    if (m_manifest && (!hasPart(m_manifest->base) || (m_manifest->update && !hasPart(*m_manifest->update))))
        m_manifest.reset();
}

bool RecoveryRecord::hasPart(const RecoveryManifest::Part& part) const {
    const QFileInfo file(filePath(part.fileName));
    return file.isFile() && !file.isSymLink() && file.size() == part.byteCount;
}

RecoveryManifest::Part RecoveryRecord::writePart(const QString& kind, const QByteArray& bytes) {
    RecoveryManifest::Part part{RecoveryManifest::partName(kind, ++m_lastPartNumber), bytes.size(), sha256(bytes)};
    writeUserOnly(filePath(part.fileName), bytes);
    return part;
}

void RecoveryRecord::write(const RecoveryDescription& description, const QByteArray& base, const QByteArray& update) {
    replace(description, base, [&](RecoveryManifest& next) {
        const bool hasBase = m_manifest && base.constData() == m_base.constData() && base.size() == m_base.size();
        next.base = hasBase ? m_manifest->base : writePart(QStringLiteral("base"), base);
        if (!update.isEmpty()) {
            const auto& former = m_manifest ? m_manifest->update : std::nullopt;
            const bool hasUpdate = former && former->byteCount == update.size() && former->sha256 == sha256(update);
            next.update = hasUpdate ? *former : writePart(QStringLiteral("update"), update);
        }
    });
}

void RecoveryRecord::write(const RecoveryDescription& description,
                           const std::function<void(const QString& path)>& writeWhole) {
    replace(description, {}, [&](RecoveryManifest& next) {
        next.base.fileName = RecoveryManifest::partName(QStringLiteral("base"), ++m_lastPartNumber);
        QFile file(filePath(next.base.fileName));
        writeWhole(file.fileName());
        file.setPermissions(userOnly);
        QCryptographicHash hash(QCryptographicHash::Sha256);
        if (!file.open(QIODevice::ReadOnly) || !hash.addData(&file))
            throw FileError(QStringLiteral("What was written can't be read."));
        next.base.byteCount = file.size();
        next.base.sha256 = hash.result();
    });
}

void RecoveryRecord::replace(const RecoveryDescription& description, const QByteArray& base,
                             const std::function<void(RecoveryManifest& next)>& writeParts) {
    // New parts get new names, so the old ones are whole until the manifest, replaced last, no longer names them.
    RecoveryManifest next;
    next.description = description;
    try {
        writeParts(next);
        writeUserOnly(filePath(manifestName), next.encoded());
    } catch (...) {
        removeUnnamedFiles();
        throw;
    }
    m_manifest = next;
    m_base = base;
    removeUnnamedFiles();
}

/// Deletes parts of earlier writes, and what a process that was killed while it wrote has left.
void RecoveryRecord::removeUnnamedFiles() const {
    QStringList named{manifestName, pictureName, lockName};
    if (m_manifest) {
        named.append(m_manifest->base.fileName);
        if (m_manifest->update)
            named.append(m_manifest->update->fileName);
    }
    for (const QString& name : QDir(m_path).entryList(QDir::Files | QDir::Hidden | QDir::System)) {
        if (!named.contains(name))
            QFile::remove(filePath(name));
    }
}

QByteArray RecoveryRecord::readPart(const RecoveryManifest::Part& part) const {
    QFile file(filePath(part.fileName));
    if (!hasPart(part) || !file.open(QIODevice::ReadOnly))
        throw FileError(QStringLiteral("A part of it is missing."));
    QByteArray bytes = file.read(part.byteCount);
    if (sha256(bytes) != part.sha256)
        throw FileError(QStringLiteral("It is damaged."));
    return bytes;
}

QByteArray RecoveryRecord::bytes() {
    if (!m_manifest)
        throw FileError(QStringLiteral("It is damaged."));
    QByteArray bytes = readPart(m_manifest->base);
    if (m_manifest->update)
        bytes += readPart(*m_manifest->update);
    else
        m_base = bytes; // the document that is opened from them needs no new base
    return bytes;
}

void RecoveryRecord::setPicture(const QImage& picture) {
    writeFileAtomically(filePath(pictureName), [&picture](QFile& file) {
        file.setPermissions(userOnly);
        if (!picture.save(&file, "PNG"))
            throw FileError(QStringLiteral("The picture couldn't be written."));
    });
}

QImage RecoveryRecord::picture() const {
    const QFileInfo info(filePath(pictureName));
    if (!info.isFile() || info.isSymLink())
        return {};
    QImageReader reader(info.filePath(), "PNG");
    const QSize size = reader.size();
    if (size.isEmpty() || size.width() > maximumPictureSide || size.height() > maximumPictureSide)
        return {};
    return reader.read();
}

void RecoveryRecord::remove() {
    // Under its new name it is no record any more, however far the deleting gets.
    const QString doomed = QFileInfo(m_path).path() + u'/' + removedPrefix + id();
    if (rename(QFile::encodeName(m_path).constData(), QFile::encodeName(doomed).constData()) == 0)
        m_path = doomed;
    QDir(m_path).removeRecursively();
    m_manifest.reset();
    m_base.clear();
}
