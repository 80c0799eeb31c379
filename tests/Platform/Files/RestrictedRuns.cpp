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
#include <sys/mount.h>
#include <sys/syscall.h>
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

RestrictedRuns::FileLimit::FileLimit(qint64 bytes) {
    getrlimit(RLIMIT_FSIZE, &m_before);
    const rlimit limit = {rlim_t(bytes), m_before.rlim_max};
    setrlimit(RLIMIT_FSIZE, &limit);
}

RestrictedRuns::FileLimit::~FileLimit() {
    setrlimit(RLIMIT_FSIZE, &m_before);
    std::signal(SIGXFSZ, m_handler);
}

/// Names the file that a run of one test alone reports to.
static constexpr const char* reportVariable = "QUILLO_SMALL_DISK_REPORT";

/// Runs the present test once more, in a process that may mount. Tells whether that process came up.
static bool runTestAlone(const QString& reportPath) {
    const auto* test = testing::UnitTest::GetInstance()->current_test_info();
    // An ordinary user may mount only where it is the superuser of a namespace of its own.
    QStringList arguments{QStringLiteral("--mount")};
    if (geteuid() != 0)
        arguments << QStringLiteral("--map-root-user");
    arguments << QCoreApplication::applicationFilePath()
              << QStringLiteral("--gtest_filter=%1.%2")
                     .arg(QLatin1String(test->test_suite_name()), QLatin1String(test->name()));
    QProcess alone;
    auto environment = QProcessEnvironment::systemEnvironment();
    environment.insert(QLatin1String(reportVariable), reportPath);
    alone.setProcessEnvironment(environment);
    alone.start(QStringLiteral("unshare"), arguments);
    EXPECT_TRUE(alone.waitForFinished(120'000));
    return QFile::exists(reportPath);
}

std::optional<QStringList>
RestrictedRuns::onSmallDisk(const QString& folder,
                            const std::function<QStringList(const std::function<void()>& makeReadOnly)>& code) {
    const QString givenPath = qEnvironmentVariable(reportVariable);
    const QTemporaryDir own;
    QFile file(givenPath.isEmpty() ? own.filePath(QStringLiteral("report")) : givenPath);
    QStringList report;
    if (givenPath.isEmpty()) {
        if (!runTestAlone(file.fileName()))
            return std::nullopt;
        EXPECT_TRUE(file.open(QFile::ReadOnly));
        QDataStream stream(&file);
        stream >> report;
        EXPECT_EQ(stream.status(), QDataStream::Ok) << "the process ended before its time";
        return report;
    }
    const QByteArray path = QFile::encodeName(folder);
    if (mount("none", path.constData(), "tmpfs", 0, "size=64k") != 0)
        return std::nullopt;
    EXPECT_TRUE(file.open(QFile::WriteOnly));
    try {
        report = code([&path] { mount(nullptr, path.constData(), nullptr, MS_REMOUNT | MS_RDONLY, nullptr); });
    } catch (const std::exception& error) {
        report = QStringList(QString::fromUtf8(error.what()));
    }
    QDataStream stream(&file);
    stream << report;
    umount(path.constData());
    return report;
}
