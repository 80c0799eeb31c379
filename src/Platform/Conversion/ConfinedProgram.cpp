#include "ConfinedProgram.h"

#include "Confinement.h"
#include "Descriptor.h"

#include <QDir>
#include <QFile>
#include <QStandardPaths>

#include <cerrno>
#include <csignal>
#include <vector>

#include <fcntl.h>
#include <poll.h>
#include <sys/prctl.h>
#include <sys/resource.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

namespace {

constexpr int noSuchProgram = 127; // as a shell tells it

/// What the new processes need, ready before they are made: between fork and exec nothing may take memory.
struct Start {
    pid_t parent;
    int ruleset;
    const char* folder;
    char* const* arguments;
    char* const* environment;
    rlimit memory;
    rlimit file;
    rlimit processorTime;
};

std::vector<char*> pointersTo(const QByteArrayList& texts) {
    std::vector<char*> pointers;
    for (const QByteArray& text : texts)
        pointers.push_back(const_cast<char*>(text.constData()));
    pointers.push_back(nullptr);
    return pointers;
}

rlimit limited(std::uint64_t most) {
    return {rlim_t(most), rlim_t(most)};
}

void endOwnGroup(int) {
    kill(0, SIGKILL);
}

void dropDescriptors() {
    const int nowhere = open("/dev/null", O_RDWR);
    for (const int number : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO})
        dup2(nowhere, number);
}

[[noreturn]] void becomeProgram(const Start& start) {
    std::signal(SIGTERM, SIG_DFL);
    const rlimit none{0, 0};
    setrlimit(RLIMIT_CORE, &none); // no document lies about after a crash
    setrlimit(RLIMIT_AS, &start.memory);
    setrlimit(RLIMIT_FSIZE, &start.file);
    setrlimit(RLIMIT_CPU, &start.processorTime);
    if (chdir(start.folder) == 0 && Confinement::enter(start.ruleset)) {
        close_range(STDERR_FILENO + 1, ~0U, 0);
        execve(start.arguments[0], start.arguments, start.environment);
    }
    _exit(noSuchProgram);
}

/// The process between Quillo and the program: it ends the whole group when Quillo is gone, which the program itself
/// and what it starts would not notice.
[[noreturn]] void guard(const Start& start) {
    setpgid(0, 0);
    std::signal(SIGTERM, endOwnGroup);
    sigset_t none;
    sigemptyset(&none);
    sigprocmask(SIG_SETMASK, &none, nullptr);
    prctl(PR_SET_PDEATHSIG, SIGTERM);
    if (getppid() != start.parent)
        _exit(noSuchProgram);
    dropDescriptors();
    const pid_t program = fork();
    if (program == 0)
        becomeProgram(start);
    int status = 0;
    if (program < 0)
        _exit(noSuchProgram);
    // Nothing that others wait for stays open here.
    close_range(STDERR_FILENO + 1, ~0U, 0);
    while (waitpid(program, &status, 0) < 0 && errno == EINTR) {
    }
    _exit(WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status));
}

/// The program's group, as long as this lives.
class Group {
public:
    explicit Group(pid_t leader) : m_leader(leader), m_handle(int(syscall(SYS_pidfd_open, leader, 0))) {}
    ~Group() { end(); }
    Q_DISABLE_COPY_MOVE(Group)

    /// True once the leader has ended; waits for a moment.
    [[nodiscard]] bool hasEnded() const {
        constexpr int look = 20; // milliseconds
        if (m_handle.isOpen()) {
            pollfd waiting{m_handle.number(), POLLIN, 0};
            return poll(&waiting, 1, look) > 0;
        }
        poll(nullptr, 0, look);
        siginfo_t info{};
        return waitid(P_PID, id_t(m_leader), &info, WEXITED | WNOHANG | WNOWAIT) != 0 || info.si_pid == m_leader;
    }

    /// Ends what is left of it, and returns the leader's exit code.
    int end() {
        if (m_leader <= 0)
            return m_exitCode;
        kill(-m_leader, SIGKILL); // before the leader is waited for, so that the number is still its own
        kill(m_leader, SIGKILL);
        int status = 0;
        while (waitpid(m_leader, &status, 0) < 0 && errno == EINTR) {
        }
        m_leader = -1;
        m_exitCode = WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
        return m_exitCode;
    }

private:
    pid_t m_leader;
    const Descriptor m_handle;
    int m_exitCode = -1;
};

} // namespace

QStringList ConfinedProgram::commonPlaces() {
    QStringList places;
    for (const char* place : {"/usr", "/bin", "/lib", "/lib32", "/lib64", "/opt", "/nix/store", "/etc/fonts",
                              "/etc/ld.so.cache", "/var/cache/fontconfig"})
        places << QString::fromLatin1(place);
    const QString home = QDir::homePath();
    const QString cache = QStandardPaths::writableLocation(QStandardPaths::GenericCacheLocation);
    const QString config = QStandardPaths::writableLocation(QStandardPaths::GenericConfigLocation);
    places << home + QStringLiteral("/.fonts") << home + QStringLiteral("/.fontconfig")
           << cache + QStringLiteral("/fontconfig") << config + QStringLiteral("/fontconfig")
           << QStandardPaths::standardLocations(QStandardPaths::FontsLocation);
    for (const char* variable : {"FONTCONFIG_FILE", "FONTCONFIG_PATH"})
        places << QFile::decodeName(qgetenv(variable));
    return places;
}

QByteArrayList ConfinedProgram::inherited(std::initializer_list<const char*> names) {
    QByteArrayList variables;
    for (const char* name : names)
        if (qEnvironmentVariableIsSet(name))
            variables << QByteArray(name) + '=' + qgetenv(name);
    return variables;
}

ConfinedProgram::Result ConfinedProgram::run(const std::stop_token& stop) const {
    if (stop.stop_requested())
        return {End::stopped, -1};
    const std::vector<char*> arguments = pointersTo(command);
    const std::vector<char*> variables = pointersTo(environment);
    const QByteArray folder = QFile::encodeName(workingFolder);
    const Descriptor ruleset(Confinement::ruleset(readable, writable, forSockets));
    const Start start{getpid(),         ruleset.number(),    folder.constData(),   arguments.data(),
                      variables.data(), limited(mostMemory), limited(largestFile), limited(mostProcessorTime)};
    const auto latest = std::chrono::steady_clock::now() + timeLimit;
    const pid_t leader = fork();
    if (leader == 0)
        guard(start);
    if (leader < 0)
        return {};
    setpgid(leader, leader); // also here, so that there is a group before it can be ended
    Group group(leader);
    while (!group.hasEnded()) {
        if (stop.stop_requested() || std::chrono::steady_clock::now() > latest) {
            group.end();
            return {stop.stop_requested() ? End::stopped : End::outOfTime, -1};
        }
    }
    const int exitCode = group.end();
    return {exitCode == noSuchProgram ? End::notStarted : End::exited, exitCode};
}
