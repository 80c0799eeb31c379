#include "InPlaceFile.h"

#include "Descriptor.h"
#include "FileError.h"
#include "StateFolder.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QRandomGenerator>

#include <cerrno>
#include <cstdio>
#include <optional>
#include <string>

#include <fcntl.h>
#include <sys/stat.h>

using std::filesystem::path;

path InPlaceFile::folderForCopies() {
    const QString program = QCoreApplication::applicationName().toLower();
    const QString folder = StateFolder::path() + QLatin1Char('/') + program + QStringLiteral("/saving");
    QDir().mkpath(folder); // a failure shows where the folder is used
    QFile::setPermissions(folder, QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
    return QFile::encodeName(folder).toStdString();
}

path InPlaceFile::keep(const path& content, const path& target) {
    constexpr std::size_t longestName = 200; // bytes, of the 255 that a file system takes
    std::string name = target.filename().string();
    name = std::to_string(QRandomGenerator::system()->generate()) + '-' +
           name.substr(name.size() > longestName ? name.size() - longestName : 0);
    for (const path& kept : {folderForCopies() / name, content.parent_path() / name}) {
        if (rename(content.c_str(), kept.c_str()) == 0)
            return kept;
    }
    return content;
}

/// The errno of what failed; none when all is written.
static std::optional<int> copyContent(int from, int to) {
    char buffer[1 << 16];
    for (;;) {
        const ssize_t count = read(from, buffer, sizeof buffer);
        if (count <= 0)
            return count == 0 ? std::nullopt : std::optional(errno);
        for (ssize_t done = 0; done < count;) {
            const ssize_t written = write(to, buffer + done, static_cast<std::size_t>(count - done));
            if (written <= 0)
                return written == 0 ? EIO : errno;
            done += written;
        }
    }
}

FileStamp InPlaceFile::overwrite(const path& target, const path& copy, bool& isCopyNeeded) {
    const Descriptor from(open(copy.c_str(), O_RDONLY | O_CLOEXEC));
    const Descriptor to(open(target.c_str(), O_WRONLY | O_CLOEXEC));
    struct stat status = {};
    if (!from.isOpen() || !to.isOpen() || fstat(from.number(), &status) != 0)
        throw FileError::forSystemError(errno);
    const off_t size = status.st_size;
    // Where the file system can't keep room free, its lack shows in the midst.
    if (size > 0 && fallocate(to.number(), FALLOC_FL_KEEP_SIZE, 0, size) != 0 && (errno == ENOSPC || errno == EDQUOT))
        throw FileError::forSystemError(errno);

    isCopyNeeded = true;
    std::optional<int> failure = copyContent(from.number(), to.number());
    if (!failure && (ftruncate(to.number(), size) != 0 || fsync(to.number()) != 0 || fstat(to.number(), &status) != 0))
        failure = errno;
    if (failure)
        throw FileError(QStringLiteral("%1 The file is incomplete now; all of the document is in “%2”.")
                            .arg(FileError::forSystemError(*failure).sentence(), QFile::decodeName(copy.c_str())),
                        FileError::Remedy::anotherPlace);
    isCopyNeeded = false;
    return FileStamp::of(status);
}
