#pragma once

#include <QString>
#include <QStringList>

#include <functional>
#include <optional>

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

} // namespace RestrictedRuns
