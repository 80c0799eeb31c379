#include "AtomicFile.h"

#include "Descriptor.h"
#include "FileError.h"
#include "InPlaceFile.h"

#include <QFile>
#include <QRandomGenerator>
#include <QScopeGuard>

#include <cerrno>
#include <cstring>
#include <filesystem>
#include <optional>
#include <string>
#include <string_view>
#include <system_error>
#include <vector>

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <sys/xattr.h>
#include <unistd.h>

using std::filesystem::path;

namespace {

/// A file that writes all it is given or remembers why not; a QFile takes a disk that fills up for a short write.
class TemporaryFile : public QFile {
public:
    explicit TemporaryFile(const path& name) : QFile(name) {}

    /// The first write error, 0 if there was none.
    int systemError() const { return m_systemError; }

protected:
    qint64 writeData(const char* data, qint64 length) override {
        qint64 written = 0;
        while (written < length) {
            errno = 0;
            const qint64 count = QFile::writeData(data + written, length - written);
            if (count <= 0) {
                if (m_systemError == 0)
                    m_systemError = errno != 0 ? errno : EIO;
                return -1;
            }
            written += count;
        }
        return written;
    }

private:
    int m_systemError = 0;
};

/// The path with the symbolic links of its last part followed, also where the last one leads to nothing yet.
path followLinks(const QString& fileName) {
    constexpr int maximumLinkCount = 40; // the kernel's own limit
    std::error_code error, ignored;
    path file = std::filesystem::absolute(QFile::encodeName(fileName).toStdString(), error);
    for (int count = 0; !error && is_symlink(symlink_status(file, ignored)); ++count) {
        if (count == maximumLinkCount)
            throw FileError::forSystemError(ELOOP);
        file = file.parent_path() / read_symlink(file, error);
    }
    if (error)
        throw FileError::forSystemError(error.value());
    return file;
}

/// What is known of an existing file; none if there is no file. Throws if it may not be replaced.
std::optional<struct stat> statusOfReplaceable(const path& file) {
    struct stat status;
    if (stat(file.c_str(), &status) != 0) {
        if (errno == ENOENT)
            return std::nullopt;
        throw FileError::forSystemError(errno);
    }
    if (S_ISDIR(status.st_mode))
        throw FileError::forSystemError(EISDIR);
    if (!S_ISREG(status.st_mode))
        throw FileError(QStringLiteral("It isn't an ordinary file."), FileError::Remedy::anotherPlace);
    if (!Descriptor(open(file.c_str(), O_WRONLY | O_CLOEXEC)).isOpen()) {
        if (errno == EACCES || errno == EPERM)
            throw FileError(QStringLiteral("You don't have permission to change this file."),
                            FileError::Remedy::anotherPlace);
        throw FileError::forSystemError(errno);
    }
    return status;
}

[[noreturn]] void throwFolderError(int errorNumber, const path& folder) {
    const QString name = QFile::decodeName(folder.filename().c_str());
    if (errorNumber == ENOENT)
        throw FileError(QStringLiteral("The folder “%1” doesn't exist.").arg(name), FileError::Remedy::anotherPlace);
    if (errorNumber == EACCES || errorNumber == EPERM)
        throw FileError(QStringLiteral("You don't have permission to write to the folder “%1”.").arg(name),
                        FileError::Remedy::anotherPlace);
    throw FileError::forSystemError(errorNumber);
}

constexpr std::string_view temporaryPrefix = ".saving-";

/// Makes an empty file and locks it through the descriptor that it returns, so that nobody takes it for a leftover. One
/// that replaces another can be read by nobody else before it has the permissions of that. -1, with `errno`, when the
/// folder doesn't take it.
int makeTemporaryFile(const path& folder, bool replaces, path& file) {
    constexpr mode_t userOnly = 0600;
    constexpr mode_t usual = 0666; // less the user's mask
    constexpr int attempts = 100;
    int error = EEXIST;
    for (int attempt = 0; error == EEXIST && attempt < attempts; ++attempt) {
        file = folder / (std::string(temporaryPrefix) + std::to_string(QRandomGenerator::system()->generate64()));
        const int flags = O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC;
        const int descriptor = open(file.c_str(), flags, replaces ? userOnly : usual);
        if (descriptor >= 0) {
            flock(descriptor, LOCK_EX | LOCK_NB); // where the file system can't, its age protects it
            return descriptor;
        }
        error = errno;
    }
    errno = error;
    return -1;
}

/// Why a file can't be replaced that can be written to: its folder is closed, or the file is a mount of its own.
bool isRefusalToReplace(int errorNumber) {
    return errorNumber == EACCES || errorNumber == EPERM || errorNumber == EBUSY || errorNumber == EXDEV;
}

/// Access control lists, tags and the like. What the file system does not take is left out.
void copyExtendedAttributes(const path& from, int to) {
    const ssize_t namesSize = listxattr(from.c_str(), nullptr, 0);
    if (namesSize <= 0)
        return;
    std::string names(static_cast<size_t>(namesSize), '\0');
    if (listxattr(from.c_str(), names.data(), names.size()) != namesSize)
        return;
    for (const char* name = names.c_str(); name < names.c_str() + names.size(); name += std::strlen(name) + 1) {
        const ssize_t size = getxattr(from.c_str(), name, nullptr, 0);
        if (size < 0)
            continue;
        std::vector<char> value(static_cast<size_t>(size));
        if (getxattr(from.c_str(), name, value.data(), value.size()) == size)
            fsetxattr(to, name, value.data(), value.size(), 0);
    }
}

void copyPermissions(const struct stat& status, const path& from, int to) {
    mode_t mode = status.st_mode & 07777;
    if (fchown(to, status.st_uid, status.st_gid) != 0) {
        mode &= 0777; // running as its owner was meant for another owner
        if (fchown(to, static_cast<uid_t>(-1), status.st_gid) != 0)
            mode = (mode & 0707) | ((mode & 0007) << 3); // the same for the group: it may do what everybody may
    }
    copyExtendedAttributes(from, to);
    // Network and foreign file systems may know no modes, or have them in their mount's hands.
    if (fchmod(to, mode) != 0 && errno != EPERM && errno != EACCES && errno != ENOTSUP && errno != ENOSYS)
        throw FileError::forSystemError(errno);
}

bool isTemporaryName(const std::string& name) {
    return name.size() > temporaryPrefix.size() && name.starts_with(temporaryPrefix) &&
           name.find_first_not_of("0123456789", temporaryPrefix.size()) == std::string::npos;
}

/// Deletes the temporary files in `folder` that this user's processes left when they were killed: those that nobody
/// holds and nobody wrote to in the hour before `now`, a time of the file system's own clock.
void removeLeftovers(const path& folder, time_t now) {
    constexpr time_t anHour = 3600;
    std::error_code error;
    for (std::filesystem::directory_iterator entry(folder, error); !error && entry != end(entry);
         entry.increment(error)) {
        const path& name = entry->path();
        if (!isTemporaryName(name.filename().string()))
            continue;
        const Descriptor file(open(name.c_str(), O_RDONLY | O_CLOEXEC | O_NOFOLLOW | O_NONBLOCK));
        struct stat status = {};
        if (file.isOpen() && fstat(file.number(), &status) == 0 && S_ISREG(status.st_mode) && status.st_nlink == 1 &&
            status.st_uid == geteuid() && now - status.st_mtime >= anHour &&
            flock(file.number(), LOCK_EX | LOCK_NB) == 0)
            unlink(name.c_str());
    }
}

/// Some file systems can't do it, and say so.
void synchronize(int descriptor) {
    if (fsync(descriptor) != 0 && errno != EINVAL && errno != ENOTSUP)
        throw FileError::forSystemError(errno);
}

void writeContent(const path& temporary, const std::function<void(QFile&)>& write) {
    TemporaryFile file(temporary);
    if (!file.open(QIODevice::ReadWrite | QIODevice::Unbuffered))
        throw FileError(QStringLiteral("A temporary file can't be written."), FileError::Remedy::anotherPlace);
    write(file);
    if (file.systemError() != 0)
        throw FileError::forSystemError(file.systemError());
}

void refuseChanged(const path& file, const std::optional<FileStamp>& expected) {
    struct stat status = {};
    if (!expected || stat(file.c_str(), &status) != 0)
        return;
    if (const FileStamp found = FileStamp::of(status); found != *expected)
        throw FileChangedError(found);
}

} // namespace

FileStamp writeFileAtomically(const QString& path, const QByteArray& bytes, const std::optional<FileStamp>& expected) {
    return writeFileAtomically(
        path, [&bytes](QFile& file) { file.write(bytes); }, expected);
}

FileStamp writeFileAtomically(const QString& path, const std::function<void(QFile& file)>& write,
                              const std::optional<FileStamp>& expected) {
    const auto target = followLinks(path);
    const auto replaced = statusOfReplaceable(target);
    std::filesystem::path temporary;
    const auto folder = target.parent_path();
    int descriptor = makeTemporaryFile(folder, replaced.has_value(), temporary);
    const bool isReplaceable = descriptor >= 0 || !replaced || !isRefusalToReplace(errno);
    if (!isReplaceable)
        descriptor = makeTemporaryFile(InPlaceFile::folderForCopies(), true, temporary);
    const Descriptor lock(descriptor);
    if (!lock.isOpen())
        throwFolderError(errno, folder);
    auto removeTemporary = qScopeGuard([&temporary] { unlink(temporary.c_str()); });

    writeContent(temporary, write);
    struct stat written = {};
    {
        const Descriptor file(open(temporary.c_str(), O_WRONLY | O_CLOEXEC));
        if (!file.isOpen())
            throw FileError::forSystemError(errno);
        if (replaced && isReplaceable)
            copyPermissions(*replaced, target, file.number());
        synchronize(file.number());
        if (fstat(file.number(), &written) != 0)
            throw FileError::forSystemError(errno);
    }
    refuseChanged(target, expected); // writing may have taken long
    if (!isReplaceable || rename(temporary.c_str(), target.c_str()) != 0) {
        if (isReplaceable && !(replaced && isRefusalToReplace(errno)))
            throw FileError::forSystemError(errno);
        bool isCopyNeeded = false;
        const auto keepCopy = qScopeGuard([&] {
            if (isCopyNeeded)
                removeTemporary.dismiss();
        });
        temporary = InPlaceFile::keep(temporary, target);
        return InPlaceFile::overwrite(target, temporary, isCopyNeeded);
    }
    removeTemporary.dismiss();

    // The new content is in place now; a folder that can't be synchronized is no failure to tell.
    synchronizeFolder(QFile::decodeName(folder.c_str()));
    removeLeftovers(folder, written.st_mtime);
    return FileStamp::of(written);
}

void synchronizeFolder(const QString& path) {
    const Descriptor folder(open(QFile::encodeName(path).constData(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    if (folder.isOpen())
        fsync(folder.number());
}
