#include "MemoryPressureSource.h"

#include <QFile>
#include <QRegularExpression>
#include <QSocketNotifier>
#include <QTimer>

#include <algorithm>
#include <optional>
#include <utility>

#include <fcntl.h>
#include <unistd.h>

MemoryPressureSource::MemoryPressureSource() : MemoryPressureSource(Configuration()) {}

MemoryPressureSource::MemoryPressureSource(const Configuration& configuration, QObject* parent)
    : QObject(parent), m_configuration(configuration) {
    if (watchPressure(configuration.warningTrigger, Level::Warning) &&
        watchPressure(configuration.criticalTrigger, Level::Critical)) {
        m_mechanism = Mechanism::PressureStall;
        return;
    }
    m_triggers.clear();
    if (!availableFraction())
        return;
    m_mechanism = Mechanism::AvailableMemory;
    m_timer = std::make_unique<QTimer>();
    connect(m_timer.get(), &QTimer::timeout, this, &MemoryPressureSource::checkAvailableMemory);
    m_timer->start(configuration.pollInterval);
}

MemoryPressureSource::~MemoryPressureSource() = default;

MemoryPressureSource::Trigger::Trigger(int descriptor)
    : fileDescriptor(descriptor), notifier(std::make_unique<QSocketNotifier>(descriptor, QSocketNotifier::Exception)) {}

MemoryPressureSource::Trigger::~Trigger() {
    notifier.reset();
    close(fileDescriptor);
}

bool MemoryPressureSource::watchPressure(const QByteArray& trigger, Level level) {
    const int descriptor =
        open(QFile::encodeName(m_configuration.pressurePath).constData(), O_RDWR | O_NONBLOCK | O_CLOEXEC);
    if (descriptor < 0)
        return false;
    // The kernel takes one trigger for a descriptor, with its terminating zero.
    const auto length = static_cast<size_t>(trigger.size()) + 1;
    if (write(descriptor, trigger.constData(), length) != static_cast<ssize_t>(length)) {
        close(descriptor);
        return false;
    }
    m_triggers.push_back(std::make_unique<Trigger>(descriptor));
    connect(m_triggers.back()->notifier.get(), &QSocketNotifier::activated, this,
            [this, level] { Q_EMIT memoryPressure(level); });
    return true;
}

std::optional<double> MemoryPressureSource::availableFraction() const {
    QFile file(m_configuration.meminfoPath);
    if (!file.open(QIODevice::ReadOnly))
        return std::nullopt;
    const QString text = QString::fromLatin1(file.readAll());
    const auto kibibytes = [&text](const QString& field) {
        const QRegularExpression line(QStringLiteral("^%1:\\s*(\\d+) kB$").arg(field),
                                      QRegularExpression::MultilineOption);
        bool isNumber = false;
        const double number = line.match(text).captured(1).toDouble(&isNumber);
        return isNumber ? std::optional(number) : std::nullopt;
    };
    const std::optional<double> total = kibibytes(QStringLiteral("MemTotal"));
    const std::optional<double> available = kibibytes(QStringLiteral("MemAvailable"));
    if (!total || !available || *total <= 0)
        return std::nullopt;
    return *available / *total;
}

void MemoryPressureSource::checkAvailableMemory() {
    const std::optional<double> available = availableFraction();
    if (!available)
        return;
    const double critical = m_configuration.criticalFraction;
    const double warning = m_configuration.warningFraction;
    const Level reached = *available < critical  ? Level::Critical
                          : *available < warning ? Level::Warning
                                                 : Level::Normal;
    if (reached > m_level) {
        m_level = reached;
        Q_EMIT memoryPressure(reached);
        return;
    }
    // Falls back level by level, and only with a margin, so that memory that hovers at a threshold is told once.
    constexpr double margin = 1.25;
    if (m_level == Level::Critical && *available >= critical * margin)
        m_level = Level::Warning;
    if (m_level == Level::Warning && *available >= warning * margin)
        m_level = Level::Normal;
}
