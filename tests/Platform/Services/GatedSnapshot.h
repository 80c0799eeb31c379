#pragma once

#include "DocumentSnapshot.h"

#include <QSemaphore>

#include <memory>
#include <utility>

/// A snapshot that isn't written before the gate is released once. `arrived`, when there is one, is released first.
class GatedSnapshot : public DocumentSnapshot {
public:
    GatedSnapshot(std::shared_ptr<const DocumentSnapshot> snapshot, std::shared_ptr<QSemaphore> gate,
                  std::shared_ptr<QSemaphore> arrived = nullptr)
        : m_snapshot(std::move(snapshot)), m_gate(std::move(gate)), m_arrived(std::move(arrived)) {}

    FileStamp write(const QString& path, const std::optional<FileStamp>& expected) const override {
        if (m_arrived)
            m_arrived->release();
        m_gate->acquire();
        return m_snapshot->write(path, expected);
    }

private:
    const std::shared_ptr<const DocumentSnapshot> m_snapshot;
    const std::shared_ptr<QSemaphore> m_gate;
    const std::shared_ptr<QSemaphore> m_arrived;
};
