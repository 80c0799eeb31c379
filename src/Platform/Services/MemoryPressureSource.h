#pragma once

#include <QByteArray>
#include <QObject>
#include <QString>

#include <chrono>
#include <memory>
#include <optional>
#include <vector>

class QSocketNotifier;
class QTimer;

/// Tells when the machine runs short of memory, from the kernel's pressure stall information (PSI) where it may be
/// used, else by looking at the available memory from time to time. Main thread.
class MemoryPressureSource : public QObject {
    Q_OBJECT

public:
    enum class Level { Normal, Warning, Critical };
    enum class Mechanism { None, PressureStall, AvailableMemory };

    struct Configuration {
        QString pressurePath = QStringLiteral("/proc/pressure/memory");
        /// "some" or "full", the stalled time and the window in microseconds: the kernel reports when tasks waited
        /// that long for memory within a window. Without privileges windows must be multiples of two seconds.
        QByteArray warningTrigger = QByteArrayLiteral("some 150000 2000000");
        QByteArray criticalTrigger = QByteArrayLiteral("full 100000 2000000");

        QString meminfoPath = QStringLiteral("/proc/meminfo");
        /// Fractions of the total memory; pressure begins when less than this is available.
        double warningFraction = 0.10;
        double criticalFraction = 0.05;
        std::chrono::milliseconds pollInterval = std::chrono::seconds(5);
    };

    MemoryPressureSource();
    explicit MemoryPressureSource(const Configuration& configuration, QObject* parent = nullptr);
    ~MemoryPressureSource() override;

    /// What the source listens to. `None` if the system offers neither: then no event ever comes.
    Mechanism mechanism() const { return m_mechanism; }

Q_SIGNALS:
    /// `level` is `Warning` or `Critical`. With `PressureStall` it comes at most once in a window of the trigger and
    /// level while the pressure lasts; with `AvailableMemory` once when a level is reached, and again only after
    /// the memory has recovered to a quarter above the threshold.
    void memoryPressure(MemoryPressureSource::Level level);

private:
    /// Opens a trigger; false if the kernel refuses.
    bool watchPressure(const QByteArray& trigger, Level level);
    /// The available share of the total memory; none if the system does not tell.
    std::optional<double> availableFraction() const;
    void checkAvailableMemory();

    /// An open file of the kernel; the trigger lives until it is closed.
    struct Trigger {
        explicit Trigger(int descriptor);
        ~Trigger();
        Q_DISABLE_COPY_MOVE(Trigger)

        const int fileDescriptor;
        std::unique_ptr<QSocketNotifier> notifier;
    };

    const Configuration m_configuration;
    Mechanism m_mechanism = Mechanism::None;
    std::vector<std::unique_ptr<Trigger>> m_triggers;
    std::unique_ptr<QTimer> m_timer;
    Level m_level = Level::Normal;
};
