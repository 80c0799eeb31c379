#include "MemoryPressureMonitor.h"

#include "MemoryPressureSource.h"
#include "QuilloAssert.h"

#include <QCoreApplication>
#include <QPointer>

MemoryPressureMonitor& MemoryPressureMonitor::shared() {
    static QPointer<MemoryPressureMonitor> monitor;
    if (!monitor) {
        QUILLO_ASSERT(QCoreApplication::instance(), "memory pressure is told by the event loop");
        monitor = new MemoryPressureMonitor(std::make_unique<MemoryPressureSource>(), QCoreApplication::instance());
    }
    return *monitor;
}

MemoryPressureMonitor::MemoryPressureMonitor(std::unique_ptr<MemoryPressureSource> source, QObject* parent)
    : QObject(parent), m_source(std::move(source)) {
    connect(m_source.get(), &MemoryPressureSource::memoryPressure, this, &MemoryPressureMonitor::callHandlers);
}

MemoryPressureMonitor::~MemoryPressureMonitor() = default;

void MemoryPressureMonitor::addHandler(Handler handler) {
    QUILLO_ASSERT(handler, "a memory pressure handler must be callable");
    m_handlers.push_back(std::move(handler));
}

void MemoryPressureMonitor::callHandlers() {
    const std::vector<Handler> handlers = m_handlers;
    for (const Handler& handler : handlers)
        handler();
}
