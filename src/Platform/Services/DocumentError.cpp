#include "DocumentError.h"

#include <cerrno>

DocumentError::DocumentError(const QString& sentence) : std::runtime_error(sentence.toStdString()) {}

QString DocumentError::sentence() const {
    return QString::fromUtf8(what());
}

DocumentError DocumentError::forSystemError(int errorNumber) {
    switch (errorNumber) {
    case ENOENT:
        return DocumentError(QStringLiteral("The file or its folder doesn't exist."));
    case ENOTDIR:
        return DocumentError(QStringLiteral("Its path leads through something that isn't a folder."));
    case EISDIR:
        return DocumentError(QStringLiteral("There is a folder of this name."));
    case EACCES:
    case EPERM:
        return DocumentError(QStringLiteral("You don't have permission."));
    case EROFS:
        return DocumentError(QStringLiteral("The disk can't be written to."));
    case ENOSPC:
        return DocumentError(QStringLiteral("There isn't enough space on the disk."));
    case EDQUOT:
        return DocumentError(QStringLiteral("Your share of the disk is used up."));
    case EFBIG:
        return DocumentError(QStringLiteral("The file is too large for this disk."));
    case ENAMETOOLONG:
        return DocumentError(QStringLiteral("The file's name is too long."));
    case ELOOP:
        return DocumentError(QStringLiteral("The link to the file leads in a circle."));
    case ETXTBSY:
    case EBUSY:
        return DocumentError(QStringLiteral("The file is in use."));
    case EMFILE:
    case ENFILE:
        return DocumentError(QStringLiteral("Too many files are open."));
    case EIO:
        return DocumentError(QStringLiteral("The disk reported an error."));
    default:
        return DocumentError(QStringLiteral("The system reported: %1.").arg(qt_error_string(errorNumber)));
    }
}
