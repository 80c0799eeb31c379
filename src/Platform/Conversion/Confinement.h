#pragma once

#include <QStringList>

/// What keeps a process from the network and from files that it has no business with.
namespace Confinement {

/// A descriptor for `enter` that allows to read and run what `readable` names, to change what `writable` names, and to
/// make sockets in what `forSockets` names, each with all below it; paths that don't exist are passed over. -1 where
/// the kernel knows no such rules. Any thread.
[[nodiscard]] int ruleset(const QStringList& readable, const QStringList& writable, const QStringList& forSockets);

/// From here on the process and all that it starts open no socket but to the same machine's programs, and no file that
/// `ruleset` doesn't allow. False when that can't be had: a kernel without rules for files counts as success, one
/// without rules for sockets doesn't. Takes no memory, so it may be called between fork and exec.
[[nodiscard]] bool enter(int ruleset);

} // namespace Confinement
