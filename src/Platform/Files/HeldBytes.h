#pragma once

#include <QByteArray>
#include <QByteArrayView>

/// Bytes that stay the same from now on, in memory or, when they are seldom looked at, in a file without a name that is
/// mapped: these count as memory only where they are read. Any thread.
class HeldBytes {
public:
    enum class Place { memory, disk };

    /// How many are worth a file.
    static constexpr qsizetype fewestOnDisk = 1 << 18;

    /// Fewer than `fewestOnDisk`, and all when the disk doesn't take them, stay in memory.
    HeldBytes(QByteArray bytes, Place place);
    ~HeldBytes();
    Q_DISABLE_COPY_MOVE(HeldBytes)

    /// Valid as long as this.
    [[nodiscard]] QByteArrayView view() const { return m_mapped.isNull() ? QByteArrayView(m_bytes) : m_mapped; }
    [[nodiscard]] bool isInMemory() const { return m_mapped.isNull(); }
    /// What was read so far counts as memory no more, until it is read again.
    void rest() const;
    /// For whoever outlives this: shares what is in memory, and copies what isn't.
    [[nodiscard]] QByteArray bytes() const { return isInMemory() ? m_bytes : m_mapped.toByteArray(); }

private:
    QByteArray m_bytes;
    QByteArrayView m_mapped;
};
