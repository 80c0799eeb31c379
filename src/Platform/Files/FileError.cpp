#include "FileError.h"

#include <cerrno>

FileError::FileError(const QString& sentence, Remedy remedy)
    : std::runtime_error(sentence.toStdString()), m_remedy(remedy) {}

QString FileError::sentence() const {
    return QString::fromUtf8(what());
}

QString FileError::advice() const {
    switch (m_remedy) {
    case Remedy::none:
        break;
    case Remedy::anotherPlace:
        return QStringLiteral("Choose Save As to store it in another place.");
    case Remedy::anotherName:
        return QStringLiteral("Choose Save As to give it another name.");
    case Remedy::freeSpace:
        return QStringLiteral("Free some space and save again, or choose Save As to store it on another disk.");
    case Remedy::tryAgain:
        return QStringLiteral("Save again in a moment, or choose Save As to store it in another place.");
    }
    return {};
}

FileError FileError::forSystemError(int errorNumber) {
    switch (errorNumber) {
    case ENOENT:
        return FileError(QStringLiteral("The file or its folder doesn't exist."), Remedy::anotherPlace);
    case ENOTDIR:
        return FileError(QStringLiteral("Its path leads through something that isn't a folder."), Remedy::anotherPlace);
    case EISDIR:
        return FileError(QStringLiteral("There is a folder of this name."), Remedy::anotherName);
    case EACCES:
    case EPERM:
        return FileError(QStringLiteral("You don't have permission."), Remedy::anotherPlace);
    case EROFS:
        return FileError(QStringLiteral("The disk can't be written to."), Remedy::anotherPlace);
    case ENOSPC:
        return FileError(QStringLiteral("There isn't enough space on the disk."), Remedy::freeSpace);
    case EDQUOT:
        return FileError(QStringLiteral("Your share of the disk is used up."), Remedy::freeSpace);
    case EFBIG:
        return FileError(QStringLiteral("The file is too large for this disk."), Remedy::anotherPlace);
    case ENAMETOOLONG:
        return FileError(QStringLiteral("The file's name is too long."), Remedy::anotherName);
    case ELOOP:
        return FileError(QStringLiteral("The link to the file leads in a circle."), Remedy::anotherPlace);
    case ETXTBSY:
    case EBUSY:
        return FileError(QStringLiteral("The file is in use."), Remedy::tryAgain);
    case EMFILE:
    case ENFILE:
        return FileError(QStringLiteral("Too many files are open."), Remedy::tryAgain);
    case EIO:
        return FileError(QStringLiteral("The disk reported an error."), Remedy::anotherPlace);
    default:
        return FileError(QStringLiteral("The system reported: %1.").arg(qt_error_string(errorNumber)),
                         Remedy::anotherPlace);
    }
}

FileChangedError::FileChangedError(const FileStamp& found)
    : FileError(QStringLiteral("Another program has changed it."), Remedy::anotherPlace), m_found(found) {}
