#include "FileStamp.h"

#include <QFile>

#include <sys/stat.h>

std::optional<FileStamp> FileStamp::of(const QString& path) {
    struct stat status = {};
    if (stat(QFile::encodeName(path).constData(), &status) != 0 || !S_ISREG(status.st_mode))
        return std::nullopt;
    return of(status);
}

FileStamp FileStamp::of(const struct stat& status) {
    constexpr std::int64_t nanosecondsOfSecond = 1'000'000'000;
    return {status.st_dev, status.st_ino, status.st_size,
            status.st_mtim.tv_sec * nanosecondsOfSecond + status.st_mtim.tv_nsec};
}
