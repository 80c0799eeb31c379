#include "FileReplacement.h"

#include "PDFError.h"

#include <QFile>
#include <QScopeGuard>

#include <cerrno>
#include <cstdlib>
#include <filesystem>
#include <string>
#include <system_error>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

[[noreturn]] void fail(const QString& sentence) {
    throw PDFError(PDFError::Kind::writeFailed, sentence);
}

[[noreturn]] void fail(int error, const std::filesystem::path& target) {
    std::error_code ignored;
    switch (error) {
    case EACCES:
    case EPERM:
        fail(QStringLiteral("You don't have permission to write there."));
    case EROFS:
        fail(QStringLiteral("The disk can't be written to."));
    case ENOSPC:
        fail(QStringLiteral("There isn't enough space on the disk."));
    case EDQUOT:
        fail(QStringLiteral("Your share of the disk is used up."));
    case ENOENT:
        if (!std::filesystem::exists(target.parent_path(), ignored))
            fail(QStringLiteral("The folder doesn't exist any more."));
        [[fallthrough]];
    default:
        fail(QStringLiteral("The file couldn't be written: %1.").arg(qt_error_string(error)));
    }
}

/// The path with the symbolic links of its last part followed, also where the last one leads to nothing yet.
std::filesystem::path followLinks(const QString& name) {
    constexpr int mostLinks = 40; // the kernel's own limit
    std::error_code error;
    std::filesystem::path path = std::filesystem::absolute(QFile::encodeName(name).toStdString(), error);
    for (int count = 0; count < mostLinks; ++count) {
        std::error_code ignored;
        if (!std::filesystem::is_symlink(std::filesystem::symlink_status(path, ignored)))
            return path;
        path = path.parent_path() / std::filesystem::read_symlink(path, error);
        if (error)
            fail(error.value(), path);
    }
    fail(ELOOP, path);
}

int writeAll(int file, const QByteArray& bytes) {
    for (qsizetype done = 0; done < bytes.size();) {
        const ssize_t count = ::write(file, bytes.constData() + done, std::size_t(bytes.size() - done));
        if (count < 0 && errno != EINTR)
            return errno;
        done += std::max<ssize_t>(count, 0);
    }
    // Some file systems can't do it, and say so.
    return fsync(file) != 0 && errno != EINVAL && errno != ENOTSUP ? errno : 0;
}

mode_t usualPermissions() {
    const mode_t mask = umask(0);
    umask(mask);
    return 0666 & ~mask;
}

} // namespace

void replaceFile(const QString& path, const QByteArray& bytes) {
    const std::filesystem::path target = followLinks(path);
    struct stat status {};
    const bool exists = stat(target.c_str(), &status) == 0;
    if (exists && S_ISDIR(status.st_mode))
        fail(QStringLiteral("There is a folder of that name."));
    // Where the folder may be changed but the file may not, it is meant to stay.
    if (exists && access(target.c_str(), W_OK) != 0)
        fail(errno, target);

    std::string name = (target.parent_path() / ".saving-XXXXXX").string();
    const int file = mkostemp(name.data(), O_CLOEXEC);
    if (file < 0)
        fail(errno, target);
    auto removeTemporary = qScopeGuard([&name] { unlink(name.c_str()); });
    int error = 0;
    if (exists && fchown(file, status.st_uid, status.st_gid) != 0)
        error = 0; // a file of someone else becomes the user's own
    if (fchmod(file, exists ? status.st_mode & 0777 : usualPermissions()) != 0)
        error = errno;
    if (error == 0)
        error = writeAll(file, bytes);
    if (close(file) != 0 && error == 0)
        error = errno;
    if (error == 0 && rename(name.c_str(), target.c_str()) != 0)
        error = errno;
    if (error != 0)
        fail(error, target);
    removeTemporary.dismiss();

    // The new content is in place now; a folder that can't be brought to the disk at once is no failure to tell.
    const int folder = open(target.parent_path().c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (folder >= 0) {
        fsync(folder);
        close(folder);
    }
}
