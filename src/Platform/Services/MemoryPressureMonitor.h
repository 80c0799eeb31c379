#pragma once

#include <QObject>

#include <functional>
#include <memory>
#include <vector>

class MemoryPressureSource;

/// Calls every handler when memory runs short, so that caches can be emptied. Warning and critical pressure are not
/// told apart. Main thread only.
class MemoryPressureMonitor : public QObject {
    Q_OBJECT

public:
    using Handler = std::function<void()>;

    /// The monitor of the process, made on first use; the application object must exist. It is gone with the
    /// application object.
    static MemoryPressureMonitor& shared();

    explicit MemoryPressureMonitor(std::unique_ptr<MemoryPressureSource> source, QObject* parent = nullptr);
    ~MemoryPressureMonitor() override;

    /// Handlers are called in the order in which they were added, and never removed. A handler added while handlers
    /// run is called from the next event on. A handler must not throw.
    void addHandler(Handler handler);
    const std::vector<Handler>& handlers() const { return m_handlers; }

private:
    void callHandlers();

    std::unique_ptr<MemoryPressureSource> m_source;
    std::vector<Handler> m_handlers;
};
