#include "RestrictedRuns.h"

#include <QCoreApplication>
#include <QDataStream>
#include <QFile>
#include <QProcess>
#include <QTemporaryDir>

#include <exception>
#include <thread>

#include <gtest/gtest.h>
#include <linux/capability.h>
#include <sched.h>
#include <sys/mount.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

/// The system call sets the privileges of the calling thread only.
static bool dropFilePrivileges() {
    __user_cap_header_struct header = {_LINUX_CAPABILITY_VERSION_3, 0};
    __user_cap_data_struct sets[2] = {};
    if (syscall(SYS_capget, &header, sets) != 0)
        return false;
    sets[0].effective &= ~((1U << CAP_DAC_OVERRIDE) | (1U << CAP_DAC_READ_SEARCH) | (1U << CAP_FOWNER));
    return syscall(SYS_capset, &header, sets) == 0;
}

void RestrictedRuns::withoutPrivileges(const std::function<void()>& code) {
    std::thread([&code] {
        ASSERT_TRUE(dropFilePrivileges());
        code();
    }).join();
}

static bool writeAll(const char* path, const QByteArray& text) {
    QFile file(QString::fromLatin1(path));
    return file.open(QIODevice::WriteOnly | QIODevice::Unbuffered) && file.write(text) == text.size();
}

/// An ordinary user may mount only where it is the superuser of a namespace of its own.
static bool becomeSuperuserOfNamespace() {
    const QByteArray user = "0 " + QByteArray::number(geteuid()) + " 1";
    const QByteArray group = "0 " + QByteArray::number(getegid()) + " 1";
    return unshare(CLONE_NEWUSER) == 0 && writeAll("/proc/self/setgroups", "deny") &&
           writeAll("/proc/self/uid_map", user) && writeAll("/proc/self/gid_map", group);
}

static bool mountSmallDisk(const char* folder) {
    if (geteuid() != 0 && !becomeSuperuserOfNamespace())
        return false;
    return unshare(CLONE_NEWNS) == 0 && mount(nullptr, "/", nullptr, MS_REC | MS_PRIVATE, nullptr) == 0 &&
           mount("none", folder, "tmpfs", 0, "size=64k") == 0;
}

/// Names the file that a run of one test alone reports to.
static constexpr const char* reportVariable = "QUILLO_SMALL_DISK_REPORT";

/// The report of the running test when it runs alone, in a process of its own.
static QByteArray reportOfTestAlone() {
    const QTemporaryDir folder;
    const QString path = folder.filePath(QStringLiteral("report"));
    const auto* test = testing::UnitTest::GetInstance()->current_test_info();
    QProcess alone;
    auto environment = QProcessEnvironment::systemEnvironment();
    environment.insert(QLatin1String(reportVariable), path);
    alone.setProcessEnvironment(environment);
    alone.start(QCoreApplication::applicationFilePath(),
                {QStringLiteral("--gtest_filter=%1.%2")
                     .arg(QLatin1String(test->test_suite_name()), QLatin1String(test->name()))});
    EXPECT_TRUE(alone.waitForFinished(120'000));
    QFile file(path);
    EXPECT_TRUE(file.open(QFile::ReadOnly)) << alone.readAll().toStdString();
    return file.readAll();
}

static std::optional<QStringList> readReport(const QByteArray& message) {
    QDataStream stream(message);
    bool isMounted = false;
    QStringList report;
    stream >> isMounted >> report;
    EXPECT_EQ(stream.status(), QDataStream::Ok) << "the child ended before its time";
    return isMounted ? std::optional(report) : std::nullopt;
}

std::optional<QStringList>
RestrictedRuns::onSmallDisk(const QString& folder,
                            const std::function<QStringList(const std::function<void()>& makeReadOnly)>& code) {
    // A child has none of its parent's threads, so what waits for one that a test before this has left would wait on.
    const QString reportPath = qEnvironmentVariable(reportVariable);
    if (reportPath.isEmpty())
        return readReport(reportOfTestAlone());
    int ends[2];
    if (pipe(ends) != 0)
        return std::nullopt;
    const pid_t child = fork();
    if (child == 0) {
        const QByteArray path = QFile::encodeName(folder);
        QByteArray message;
        QDataStream stream(&message, QIODevice::WriteOnly);
        const bool isMounted = mountSmallDisk(path.constData());
        stream << isMounted;
        if (isMounted) {
            try {
                stream << code([&] { mount(nullptr, path.constData(), nullptr, MS_REMOUNT | MS_RDONLY, nullptr); });
            } catch (const std::exception& error) {
                stream << QStringList(QString::fromUtf8(error.what()));
            }
        }
        // The report is shorter than the pipe's buffer. The test program's own clean-up is not the child's.
        const bool isSent = write(ends[1], message.constData(), size_t(message.size())) == message.size();
        _exit(isSent ? 0 : 1);
    }
    close(ends[1]);
    QFile in;
    QByteArray message;
    if (in.open(ends[0], QIODevice::ReadOnly, QFileDevice::AutoCloseHandle))
        message = in.readAll();
    waitpid(child, nullptr, 0);

    QFile file(reportPath);
    EXPECT_TRUE(file.open(QFile::WriteOnly) && file.write(message) == message.size());
    file.close();
    return readReport(message);
}
