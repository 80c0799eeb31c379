#pragma once

#include <QString>
#include <QStringList>

#include <csignal>
#include <functional>
#include <optional>

#include <sys/resource.h>

/// Runs code under conditions that need no preparation of the machine, also when the tests run as root.
namespace RestrictedRuns {

/// Runs `code` on a thread that passes no permission check by privilege: files are closed to it as to their ordinary
/// owner.
void withoutPrivileges(const std::function<void()>& code);

/// Runs `code` in a process that sees a disk of 64 KiB at `folder`, and returns what `code` returns. `code` can make
/// that disk read-only. The whole test is run once more for that, alone. None if the system does not let the process
/// mount a disk.
std::optional<QStringList>
onSmallDisk(const QString& folder, const std::function<QStringList(const std::function<void()>& makeReadOnly)>& code);

/// No file can grow beyond so many bytes while it lives.
class FileLimit {
public:
    explicit FileLimit(qint64 bytes);
    ~FileLimit();
    FileLimit(const FileLimit&) = delete;
    FileLimit& operator=(const FileLimit&) = delete;

private:
    rlimit m_before = {};
    const sighandler_t m_handler = std::signal(SIGXFSZ, SIG_IGN);
};

} // namespace RestrictedRuns
