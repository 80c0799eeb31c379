#include "AtomicFile.h"
#include "FolderTest.h"
#include "MemoryPressureMonitor.h"
#include "MemoryPressureSource.h"

#include <QSet>
#include <QTest>
#include <QTimer>

#include <thread>
#include <vector>

namespace {

using Level = MemoryPressureSource::Level;
using Mechanism = MemoryPressureSource::Mechanism;

class MemoryPressureTest : public FolderTest {
protected:
    /// Written at once, so that no look finds half of it.
    void setAvailablePercent(int percent) const {
        const QString text = QStringLiteral("MemTotal:       2000000 kB\nMemFree: 1 kB\nMemAvailable: %1 kB\n");
        writeFileAtomically(m_configuration.meminfoPath, text.arg(percent * 20000).toLatin1());
    }

    /// Returns when the source has looked more than once, so that a level told again and again shows.
    void waitForLooks() const {
        int ticks = 0;
        QTimer timer; // fires no more often than the source's
        QObject::connect(&timer, &QTimer::timeout, [&ticks] { ++ticks; });
        timer.start(m_configuration.pollInterval);
        ASSERT_TRUE(QTest::qWaitFor([&ticks] { return ticks >= 5; }));
    }

    MemoryPressureSource::Configuration m_configuration = {.pressurePath = path("no-such-file"),
                                                           .meminfoPath = path("meminfo"),
                                                           .pollInterval = std::chrono::milliseconds(1)};
};

TEST_F(MemoryPressureTest, AvailableMemoryIsToldWhenALevelIsReached) {
    setAvailablePercent(50);
    MemoryPressureSource source(m_configuration);
    ASSERT_EQ(source.mechanism(), Mechanism::AvailableMemory);
    std::vector<Level> levels;
    QObject::connect(&source, &MemoryPressureSource::memoryPressure, [&](Level level) { levels.push_back(level); });

    const std::pair<int, std::vector<Level>> rows[] = {
        {11, {}},
        {9, {Level::Warning}},
        {11, {}}, // not recovered yet
        {9, {}},
        {4, {Level::Critical}},
        {5, {}},
        {4, {}},
        {7, {}}, // back to warning, which was told
        {4, {Level::Critical}},
        {50, {}},
        {9, {Level::Warning}},
    };
    for (const auto& [percent, told] : rows) {
        levels.clear();
        setAvailablePercent(percent);
        waitForLooks();
        EXPECT_EQ(levels, told) << percent << " %";
    }
}

TEST_F(MemoryPressureTest, AMechanismIsChosenByWhatTheSystemOffers) {
    EXPECT_EQ(MemoryPressureSource(m_configuration).mechanism(), Mechanism::None);
    for (const char* text : {"", "MemTotal: many kB\n", "MemTotal: 0 kB\nMemAvailable: 0 kB\n", "MemTotal: 5 kB\n"}) {
        writeFileAtomically(m_configuration.meminfoPath, QByteArray(text));
        EXPECT_EQ(MemoryPressureSource(m_configuration).mechanism(), Mechanism::None) << text;
    }
    m_configuration.meminfoPath = QStringLiteral("/proc/meminfo");
    EXPECT_EQ(MemoryPressureSource(m_configuration).mechanism(), Mechanism::AvailableMemory);
    if (QFile::exists(QStringLiteral("/proc/pressure/memory"))) {
        m_configuration.pressurePath = QStringLiteral("/proc/pressure/memory");
        m_configuration.warningTrigger = "not a trigger";
        EXPECT_EQ(MemoryPressureSource(m_configuration).mechanism(), Mechanism::AvailableMemory);
    }
}

// The kernel reports processor pressure by the same means, and that can be brought about.
TEST_F(MemoryPressureTest, StallsAreToldByTheKernel) {
    m_configuration.pressurePath = QStringLiteral("/proc/pressure/cpu");
    m_configuration.warningTrigger = "some 1000 2000000";
    m_configuration.criticalTrigger = "some 1001 2000000";
    if (!QFile(m_configuration.pressurePath).open(QIODevice::ReadWrite | QIODevice::Unbuffered))
        GTEST_SKIP() << "the kernel offers no pressure stall information to this user";
    MemoryPressureSource source(m_configuration);
    ASSERT_EQ(source.mechanism(), Mechanism::PressureStall);
    QSet<Level> levels;
    QObject::connect(&source, &MemoryPressureSource::memoryPressure, [&](Level level) { levels.insert(level); });

    std::vector<std::jthread> threads(std::thread::hardware_concurrency() * 2 + 1);
    for (auto& thread : threads)
        thread = std::jthread([](const std::stop_token& stop) {
            while (!stop.stop_requested())
                ;
        });
    EXPECT_TRUE(QTest::qWaitFor([&] { return levels.size() == 2; }, 60000));
}

TEST_F(MemoryPressureTest, TheMonitorCallsACopyOfTheHandlersInOrder) {
    auto source = std::make_unique<MemoryPressureSource>(m_configuration);
    MemoryPressureSource& sender = *source;
    MemoryPressureMonitor monitor(std::move(source));
    QString calls;
    monitor.addHandler([&] { calls += u'a'; });
    monitor.addHandler([&] {
        calls += u'b';
        monitor.addHandler([&] { calls += u'c'; });
    });

    Q_EMIT sender.memoryPressure(Level::Critical);
    EXPECT_EQ(calls.toStdString(), "ab");
    Q_EMIT sender.memoryPressure(Level::Warning);
    EXPECT_EQ(calls.toStdString(), "ababc");
    EXPECT_EQ(&MemoryPressureMonitor::shared(), &MemoryPressureMonitor::shared());
}

} // namespace
