#include "DeviceIdentity.h"

#include "AtomicFile.h"
#include "DeviceIdentityError.h"
#include "FileError.h"
#include "P256SigningKey.h"

#include <QCryptographicHash>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QMutex>
#include <QMutexLocker>
#include <QStandardPaths>

#include <exception>
#include <optional>

namespace {

constexpr auto userOnly = QFile::ReadOwner | QFile::WriteOwner;

/// A folder that can't be made shows when the file is written.
void makeFolder(const QString& path) {
    QDir().mkpath(path);
    QFile::setPermissions(path, userOnly | QFile::ExeOwner);
}

std::optional<P256SigningKey> loadFromDisk() {
    QFile file(DeviceIdentity::keyFilePath());
    if (!QFileInfo(file).isFile() || !file.open(QIODevice::ReadOnly))
        return std::nullopt;
    constexpr qint64 enoughToTell = 64; // a key has 32 bytes
    return P256SigningKey::fromRawRepresentation(file.read(enoughToTell));
}

/// A file that is closed to the user, or belongs to another one, would be in the way of its successor.
void makeWayAt(const QString& path) {
    if (QFileInfo(path).isFile() && !QFile::setPermissions(path, userOnly))
        QFile::remove(path);
}

void saveToDisk(const P256SigningKey& key) {
    const QString path = DeviceIdentity::keyFilePath();
    makeFolder(QFileInfo(path).path());
    makeWayAt(path);
    const QByteArray bytes = key.rawRepresentation();
    try {
        writeFileAtomically(path, [&bytes](QFile& file) {
            // The file must be closed to others before the key gets into it.
            if (!file.setPermissions(userOnly))
                throw FileError(file.errorString());
            file.write(bytes);
        });
        // Where nothing could make way, the file has the permissions that it had.
        QFile file(path);
        if (!file.setPermissions(userOnly))
            throw FileError(file.errorString());
    } catch (const FileError& error) {
        std::throw_with_nested(DeviceIdentityError::writeFailed(error));
    }
}

/// One at a time, so that of two first requests the second finds the key of the first.
P256SigningKey privateKey() {
    static QMutex mutex;
    const QMutexLocker lock(&mutex);
    if (auto key = loadFromDisk())
        return *std::move(key);
    P256SigningKey key = P256SigningKey::makeCompactRepresentable();
    saveToDisk(key);
    return key;
}

} // namespace

QString DeviceIdentity::keyFilePath() {
    return QStandardPaths::writableLocation(QStandardPaths::GenericDataLocation) +
           QStringLiteral("/Quillo/device-identity.key");
}

QByteArray DeviceIdentity::publicKeyBase64() {
    return privateKey().publicKeyDERRepresentation().toBase64();
}

QByteArray DeviceIdentity::sign(const QByteArray& bodyBytes, qint64 timestampMillis) {
    const QByteArray digest = QCryptographicHash::hash(bodyBytes, QCryptographicHash::Sha256);
    return privateKey().signature(QByteArray::number(timestampMillis) + '.' + digest.toHex()).toBase64();
}
