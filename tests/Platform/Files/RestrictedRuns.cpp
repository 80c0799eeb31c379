#include "RestrictedRuns.h"

#include <QDataStream>
#include <QFile>

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

std::optional<QStringList>
RestrictedRuns::onSmallDisk(const QString& folder,
                            const std::function<QStringList(const std::function<void()>& makeReadOnly)>& code) {
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

    QDataStream stream(message);
    bool isMounted = false;
    QStringList report;
    stream >> isMounted >> report;
    return isMounted ? std::optional(report) : std::nullopt;
}
