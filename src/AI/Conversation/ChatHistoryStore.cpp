#include "ChatHistoryStore.h"

#include "AtomicFile.h"
#include "ChatSessionCoder.h"
#include "Logging.h"

#include <QCryptographicHash>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QStandardPaths>

#include <exception>

namespace {

constexpr QFile::Permissions userOnly = QFile::ReadOwner | QFile::WriteOwner;

/// Made with its parents when it isn't there. A failure shows when the file is opened.
QString directory() {
    constexpr QFile::Permissions userOnlyFolder = userOnly | QFile::ExeOwner;
    QDir().mkpath(QStandardPaths::writableLocation(QStandardPaths::GenericDataLocation));
    QString path = QStandardPaths::writableLocation(QStandardPaths::GenericDataLocation);
    for (const QString& name : {QStringLiteral("/Quillo"), QStringLiteral("/Chats")}) {
        path += name;
        QDir().mkdir(path, userOnlyFolder);
    }
    QFile::setPermissions(path, userOnlyFolder);
    return path;
}

QString filePath(const QString& documentKey) {
    const QByteArray digest = QCryptographicHash::hash(documentKey.toUtf8(), QCryptographicHash::Sha256);
    return directory() + u'/' + QString::fromLatin1(digest.toHex()) + QStringLiteral(".json");
}

} // namespace

std::vector<ChatSession> ChatHistoryStore::load(const QString& documentKey) {
    const QString path = filePath(documentKey);
    QFile file(path);
    if (!QFileInfo(path).isFile() || !file.open(QIODevice::ReadOnly)) // a pipe would never end
        return {};
    return ChatSessionCoder::decode(file.readAll()).value_or(std::vector<ChatSession>());
}

void ChatHistoryStore::save(const std::vector<ChatSession>& sessions, const QString& documentKey) {
    const QString path = filePath(documentKey);
    const QByteArray json = ChatSessionCoder::encode(sessions);
    try {
        if (QFileInfo(path).isFile())
            QFile::setPermissions(path, userOnly); // which the new file takes over
        writeFileAtomically(path, [&json](QFile& file) {
            file.setPermissions(userOnly);
            file.write(json);
        });
    } catch (const std::exception& error) { // the conversation stays in memory
        qCWarning(Logging::ai) << "the conversations of a document weren't saved:" << Logging::causes(error);
    }
}
