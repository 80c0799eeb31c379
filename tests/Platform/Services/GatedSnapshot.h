#pragma once

#include "DocumentSnapshot.h"

#include <QSemaphore>

#include <memory>
#include <utility>

/// A snapshot that isn't written before the gate is released once.
class GatedSnapshot : public DocumentSnapshot {
public:
    GatedSnapshot(std::shared_ptr<const DocumentSnapshot> snapshot, std::shared_ptr<QSemaphore> gate)
        : m_snapshot(std::move(snapshot)), m_gate(std::move(gate)) {}

    void write(const QString& path) const override {
        m_gate->acquire();
        m_snapshot->write(path);
    }

private:
    const std::shared_ptr<const DocumentSnapshot> m_snapshot;
    const std::shared_ptr<QSemaphore> m_gate;
};
