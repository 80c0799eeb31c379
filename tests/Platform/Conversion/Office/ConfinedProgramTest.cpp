#include "ConfinedProgram.h"

#include "OfficeFiles.h"

#include <QDir>
#include <QTcpServer>
#include <QTemporaryDir>

#include <csignal>
#include <thread>

#include <sys/wait.h>
#include <unistd.h>

using namespace std::chrono_literals;

namespace {

ConfinedProgram shell(const QByteArray& script, const QTemporaryDir& folder) {
    ConfinedProgram program;
    program.command = {"/bin/bash", "-c", script};
    program.environment = {"PATH=" + qgetenv("PATH")};
    program.workingFolder = folder.path();
    program.readable = {QStringLiteral("/usr"), QStringLiteral("/bin"), QStringLiteral("/lib"),
                        QStringLiteral("/lib64"), QStringLiteral("/etc/ld.so.cache")};
    program.writable = {folder.path(), QStringLiteral("/dev/null")};
    return program;
}

/// Waits for the file that a program writes its number into.
pid_t processIn(const QString& path) {
    for (int i = 0; i < 500; ++i) {
        if (const QByteArray text = OfficeFiles::bytesOf(path); text.endsWith('\n'))
            return pid_t(text.trimmed().toInt());
        std::this_thread::sleep_for(10ms);
    }
    return -1;
}

bool isGone(pid_t process) {
    for (int i = 0; i < 500; ++i) {
        // What nobody waits for any more stays as a name.
        const QByteArray state = OfficeFiles::bytesOf(QStringLiteral("/proc/%1/stat").arg(process));
        if (state.isEmpty() || state.contains(") Z "))
            return true;
        std::this_thread::sleep_for(10ms);
    }
    return false;
}

// A child that would not notice that its parent was ended.
constexpr auto startsAnother = "sleep 1000 & echo $! > number; wait";

} // namespace

TEST(ConfinedProgram, tellsHowItEnded) {
    using End = ConfinedProgram::End;
    const QTemporaryDir folder;
    const struct {
        const char* script;
        End end;
        int exitCode;
    } cases[] = {{"exit 0", End::exited, 0},
                 {"exit 81", End::exited, 81},
                 {"kill -SEGV $$", End::exited, 128 + SIGSEGV},
                 {"head -c 9000000 /dev/zero > file", End::exited, 1}, // no such device for it
                 {"ulimit -v 1; exit 9", End::exited, 9}};
    for (const auto& [script, end, exitCode] : cases) {
        const auto result = shell(script, folder).run({});
        EXPECT_EQ(result.end, end) << script;
        EXPECT_EQ(result.exitCode, exitCode) << script;
    }
    ConfinedProgram missing = shell({}, folder);
    missing.command = {"/no/such/program"};
    EXPECT_EQ(missing.run({}).end, End::notStarted);
    ConfinedProgram slow = shell("sleep 1000", folder);
    slow.timeLimit = 50ms;
    EXPECT_EQ(slow.run({}).end, End::outOfTime);
}

TEST(ConfinedProgram, endsWithAllThatItStarted) {
    const QTemporaryDir folder;
    const QString number = folder.filePath(QStringLiteral("number"));
    std::stop_source stop;
    std::jthread stopper([&] {
        EXPECT_GT(processIn(number), 0);
        stop.request_stop();
    });
    EXPECT_EQ(shell(startsAnother, folder).run(stop.get_token()).end, ConfinedProgram::End::stopped);
    EXPECT_TRUE(isGone(processIn(number)));
    QFile::remove(number);

    // Also when the program that started it is ended without a word.
    const ConfinedProgram orphan = shell(startsAnother, folder);
    const pid_t parent = fork();
    if (parent == 0) {
        (void)orphan.run({});
        _exit(0);
    }
    const pid_t process = processIn(number);
    EXPECT_GT(process, 0);
    kill(parent, SIGKILL);
    waitpid(parent, nullptr, 0);
    EXPECT_TRUE(isGone(process));
}

TEST(ConfinedProgram, reachesNoNetworkAndNoOtherFile) {
    const QTemporaryDir folder;
    const QTemporaryDir other;
    const QString secret = OfficeFiles::write(other.filePath(QStringLiteral("secret")), "secret");
    QTcpServer server;
    ASSERT_TRUE(server.listen(QHostAddress::LocalHost));
    const QByteArray script = "cat " + QFile::encodeName(secret) + " > read; echo > /dev/tcp/127.0.0.1/" +
                              QByteArray::number(server.serverPort()) + " && touch connected; touch " +
                              QFile::encodeName(other.path()) + "/written; touch done";
    EXPECT_EQ(shell(script, folder).run({}).exitCode, 0);
    EXPECT_FALSE(server.waitForNewConnection(50));
    EXPECT_TRUE(QFile::exists(folder.filePath(QStringLiteral("done"))));
    EXPECT_FALSE(QFile::exists(folder.filePath(QStringLiteral("connected"))));
    EXPECT_EQ(OfficeFiles::bytesOf(folder.filePath(QStringLiteral("read"))), "");
    EXPECT_EQ(QDir(other.path()).entryList(QDir::Files), QStringList(QStringLiteral("secret")));
}
