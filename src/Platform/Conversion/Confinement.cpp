#include "Confinement.h"

#include "Descriptor.h"

#include <QFile>

#include <cerrno>
#include <cstddef>
#include <cstdint>

#include <fcntl.h>
#include <linux/audit.h>
#include <linux/filter.h>
#include <linux/landlock.h>
#include <linux/seccomp.h>
#include <sys/prctl.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <unistd.h>

namespace {

constexpr std::uint64_t readFile = LANDLOCK_ACCESS_FS_EXECUTE | LANDLOCK_ACCESS_FS_READ_FILE;
constexpr std::uint64_t readFolder = LANDLOCK_ACCESS_FS_READ_DIR;
constexpr std::uint64_t truncateFile = 1U << 14U; // newer than the headers of the baseline
constexpr std::uint64_t changeFolder =
    LANDLOCK_ACCESS_FS_REMOVE_DIR | LANDLOCK_ACCESS_FS_REMOVE_FILE | LANDLOCK_ACCESS_FS_MAKE_CHAR |
    LANDLOCK_ACCESS_FS_MAKE_DIR | LANDLOCK_ACCESS_FS_MAKE_REG | LANDLOCK_ACCESS_FS_MAKE_SOCK |
    LANDLOCK_ACCESS_FS_MAKE_FIFO | LANDLOCK_ACCESS_FS_MAKE_BLOCK | LANDLOCK_ACCESS_FS_MAKE_SYM;

#if defined(__x86_64__)
constexpr std::uint32_t ownArchitecture = AUDIT_ARCH_X86_64;
#elif defined(__aarch64__)
constexpr std::uint32_t ownArchitecture = AUDIT_ARCH_AARCH64;
#elif defined(__riscv) && __riscv_xlen == 64
constexpr std::uint32_t ownArchitecture = AUDIT_ARCH_RISCV64;
#elif defined(__powerpc64__) && defined(__LITTLE_ENDIAN__)
constexpr std::uint32_t ownArchitecture = AUDIT_ARCH_PPC64LE;
#elif defined(__arm__)
constexpr std::uint32_t ownArchitecture = AUDIT_ARCH_ARM;
#else
#error "Which architecture is this? See linux/audit.h."
#endif

constexpr sock_filter load(std::uint32_t offset) {
    return BPF_STMT(BPF_LD | BPF_W | BPF_ABS, offset);
}

constexpr sock_filter answer(std::uint32_t what) {
    return BPF_STMT(BPF_RET | BPF_K, what);
}

/// Goes on behind the next `skipped` lines unless the loaded number is `value`.
constexpr sock_filter unless(std::uint32_t value, std::uint8_t skipped) {
    return BPF_JUMP(BPF_JMP | BPF_JEQ | BPF_K, value, 0, skipped);
}

constexpr std::uint32_t refusal = SECCOMP_RET_ERRNO | EACCES;

/// Sockets of the network can't be made: neither by the call for it, nor by a call of another architecture's numbers,
/// nor through a queue of calls that this filter doesn't see.
bool leaveNetwork() {
    static constexpr std::uint32_t firstForeignCall = 0x40000000; // those with 32-bit pointers on x86-64
    // Offsets of 64-bit arguments lead to their lower half: all of these architectures have it first.
    static sock_filter lines[] = {
        load(offsetof(seccomp_data, arch)),
        BPF_JUMP(BPF_JMP | BPF_JEQ | BPF_K, ownArchitecture, 1, 0),
        answer(SECCOMP_RET_KILL_PROCESS),
        load(offsetof(seccomp_data, nr)),
        BPF_JUMP(BPF_JMP | BPF_JGE | BPF_K, firstForeignCall, 0, 1),
        answer(refusal),
        unless(SYS_io_uring_setup, 1),
        answer(refusal),
        unless(SYS_socket, 3),
        load(offsetof(seccomp_data, args)),
        BPF_JUMP(BPF_JMP | BPF_JEQ | BPF_K, AF_UNIX, 1, 0),
        answer(refusal),
        answer(SECCOMP_RET_ALLOW),
    };
    const sock_fprog filter{sizeof lines / sizeof lines[0], lines};
    return prctl(PR_SET_SECCOMP, SECCOMP_MODE_FILTER, &filter) == 0;
}

void allow(int ruleset, const QString& path, std::uint64_t forFiles, std::uint64_t forFolders) {
    const Descriptor place(open(QFile::encodeName(path).constData(), O_PATH | O_CLOEXEC));
    struct stat information {};
    if (!place.isOpen() || fstat(place.number(), &information) != 0)
        return;
    landlock_path_beneath_attr rule{};
    rule.allowed_access = S_ISDIR(information.st_mode) ? forFiles | forFolders : forFiles;
    rule.parent_fd = place.number();
    syscall(SYS_landlock_add_rule, ruleset, LANDLOCK_RULE_PATH_BENEATH, &rule, 0);
}

} // namespace

int Confinement::ruleset(const QStringList& readable, const QStringList& writable, const QStringList& forSockets) {
    const long version = syscall(SYS_landlock_create_ruleset, nullptr, 0, LANDLOCK_CREATE_RULESET_VERSION);
    if (version < 1)
        return -1;
    const std::uint64_t changeFile = LANDLOCK_ACCESS_FS_WRITE_FILE | (version >= 3 ? truncateFile : 0);
    const std::uint64_t move = version >= 2 ? LANDLOCK_ACCESS_FS_REFER : 0;
    landlock_ruleset_attr handled{};
    handled.handled_access_fs = readFile | readFolder | changeFile | changeFolder | move;
    const auto ruleset = int(syscall(SYS_landlock_create_ruleset, &handled, sizeof handled, 0));
    if (ruleset < 0)
        return -1;
    for (const QString& path : readable)
        allow(ruleset, path, readFile, readFolder);
    for (const QString& path : writable)
        allow(ruleset, path, readFile | changeFile, readFolder | changeFolder | move);
    for (const QString& path : forSockets)
        allow(ruleset, path, 0, LANDLOCK_ACCESS_FS_MAKE_SOCK);
    return ruleset;
}

bool Confinement::enter(int ruleset) {
    if (prctl(PR_SET_NO_NEW_PRIVS, 1, 0, 0, 0) != 0)
        return false;
    if (ruleset >= 0 && syscall(SYS_landlock_restrict_self, ruleset, 0) != 0)
        return false;
    return leaveNetwork();
}
