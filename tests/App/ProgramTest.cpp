#include "CommandLine.h"
#include "InstanceChannel.h"
#include "TestPdf.h"
#include "UserDefaults.h"

#include <QFileInfo>
#include <QLocalSocket>
#include <QProcess>
#include <QSet>
#include <QTemporaryDir>
#include <QTest>

#include <algorithm>
#include <csignal>
#include <iterator>

#include <gtest/gtest.h>

static constexpr int startTimeLimitInMilliseconds = 30000;

/// Starts the real program, with the folders of the test.
class ProgramTest : public testing::Test {
protected:
    static void start(QProcess& process, const QStringList& arguments) {
        process.start(QStringLiteral(QUILLO_PROGRAM), arguments);
        ASSERT_TRUE(process.waitForStarted());
    }

    struct Ended {
        int exitCode = -1;
        QByteArray output; ///< or errors
    };

    static Ended run(const QStringList& arguments) {
        QProcess process;
        process.setProcessChannelMode(QProcess::MergedChannels);
        start(process, arguments);
        if (!process.waitForFinished(startTimeLimitInMilliseconds) || process.exitStatus() != QProcess::NormalExit)
            return {};
        return {process.exitCode(), process.readAll()};
    }

    /// Waits until a program runs that another start can reach.
    static bool isReachable() {
        return QTest::qWaitFor(
            [] {
                QLocalSocket socket;
                socket.connectToServer(InstanceChannel::standardSocketPath());
                return socket.waitForConnected();
            },
            startTimeLimitInMilliseconds);
    }

    static QStringList recentPaths() {
        // Qt's test mode, which is on here and not in the program, would give another folder.
        const UserDefaults defaults(qEnvironmentVariable("XDG_CONFIG_HOME") + QStringLiteral("/Quillo/Quillo.ini"));
        return defaults.stringListForKey(QStringLiteral("DocumentController.recentDocumentPaths"))
            .value_or(QStringList());
    }

    static void expectCleanEnd(QProcess& process, int signalNumber) {
        ASSERT_EQ(kill(static_cast<pid_t>(process.processId()), signalNumber), 0);
        ASSERT_TRUE(process.waitForFinished(startTimeLimitInMilliseconds));
        EXPECT_TRUE(process.exitStatus() == QProcess::NormalExit && process.exitCode() == 0);
        EXPECT_FALSE(QFileInfo::exists(InstanceChannel::standardSocketPath()));
    }

    [[nodiscard]] QString file(const char* name) const {
        return TestPdf().write(m_folder.path(), QString::fromUtf8(name)).toLocalFile();
    }

    QTemporaryDir m_folder;
};

TEST_F(ProgramTest, textsForTheTerminalNeedNoDisplay) {
    qputenv("QT_QPA_PLATFORM", "no-such-platform");
    EXPECT_TRUE(run({QStringLiteral("--version")}).output.startsWith("Quillo "));
    EXPECT_TRUE(run({QStringLiteral("--help")}).output.contains("quillo [FILE…]"));
    QProcess recognizer;
    start(recognizer, {CommandLine::recognizerOption});
    const qint32 header[] = {0x51524331, 1, 1, 300}; // a picture of one pixel, in which nothing can be read
    recognizer.write(reinterpret_cast<const char*>(header), sizeof header);
    recognizer.write("\xff", 1);
    recognizer.closeWriteChannel();
    EXPECT_TRUE(recognizer.waitForFinished(startTimeLimitInMilliseconds));
    EXPECT_EQ(recognizer.exitCode(), 0);
    EXPECT_EQ(recognizer.readAllStandardOutput(), QByteArray(4, '\0')) << "no line";
    const Ended mistaken = run({QStringLiteral("--loud")});
    EXPECT_EQ(mistaken.exitCode, 2);
    EXPECT_TRUE(mistaken.output.contains("--loud"));
    qputenv("QT_QPA_PLATFORM", "offscreen");
}

TEST_F(ProgramTest, startsAtTheSameMomentBecomeOneProgramWithAllFiles) {
    const QStringList files = {file("a.pdf"), file("b.pdf"), file("c.pdf"), file("d.pdf")};
    QProcess processes[3];
    start(processes[0], {files[0], files[1]});
    start(processes[1], {files[2]});
    start(processes[2], {files[3]});
    const auto isRunning = [](const QProcess& each) { return each.state() == QProcess::Running; };
    const auto isOneLeft = [&] { return std::count_if(std::begin(processes), std::end(processes), isRunning) == 1; };
    ASSERT_TRUE(QTest::qWaitFor(isOneLeft, startTimeLimitInMilliseconds));
    EXPECT_EQ(run({}).exitCode, 0) << "it brings the windows of the first forward";
    for (QProcess& process : processes) {
        if (isRunning(process))
            expectCleanEnd(process, SIGHUP);
        EXPECT_EQ(process.exitCode(), 0);
    }
    const QStringList recent = recentPaths().mid(0, 4);
    EXPECT_EQ(QSet<QString>(recent.begin(), recent.end()), QSet<QString>(files.begin(), files.end()));
    EXPECT_EQ(recent.indexOf(files[0]), recent.indexOf(files[1]) + 1) << "newest first: those of a start in its order";
}

TEST_F(ProgramTest, neitherACrashNorASignalKeepsTheNextStartAway) {
    QProcess crashed;
    start(crashed, {});
    ASSERT_TRUE(isReachable());
    crashed.kill();
    ASSERT_TRUE(crashed.waitForFinished());
    ASSERT_TRUE(QFileInfo::exists(InstanceChannel::standardSocketPath()));
    for (const int signalNumber : {SIGINT, SIGTERM}) {
        QProcess program;
        start(program, {});
        ASSERT_TRUE(isReachable());
        expectCleanEnd(program, signalNumber);
    }
}
