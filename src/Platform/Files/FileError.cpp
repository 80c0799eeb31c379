#include "FileError.h"

#include <cerrno>

FileError::FileError(const QString& sentence) : std::runtime_error(sentence.toStdString()) {}

QString FileError::sentence() const {
    return QString::fromUtf8(what());
}

FileError FileError::forSystemError(int errorNumber) {
    switch (errorNumber) {
    case ENOENT:
        return FileError(QStringLiteral("The file or its folder doesn't exist."));
    case ENOTDIR:
        return FileError(QStringLiteral("Its path leads through something that isn't a folder."));
    case EISDIR:
        return FileError(QStringLiteral("There is a folder of this name."));
    case EACCES:
    case EPERM:
        return FileError(QStringLiteral("You don't have permission."));
    case EROFS:
        return FileError(QStringLiteral("The disk can't be written to."));
    case ENOSPC:
        return FileError(QStringLiteral("There isn't enough space on the disk."));
    case EDQUOT:
        return FileError(QStringLiteral("Your share of the disk is used up."));
    case EFBIG:
        return FileError(QStringLiteral("The file is too large for this disk."));
    case ENAMETOOLONG:
        return FileError(QStringLiteral("The file's name is too long."));
    case ELOOP:
        return FileError(QStringLiteral("The link to the file leads in a circle."));
    case ETXTBSY:
    case EBUSY:
        return FileError(QStringLiteral("The file is in use."));
    case EMFILE:
    case ENFILE:
        return FileError(QStringLiteral("Too many files are open."));
    case EIO:
        return FileError(QStringLiteral("The disk reported an error."));
    default:
        return FileError(QStringLiteral("The system reported: %1.").arg(qt_error_string(errorNumber)));
    }
}
