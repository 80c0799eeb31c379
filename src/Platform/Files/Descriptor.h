#pragma once

#include <QtGlobal>

#include <unistd.h>

/// Closes its file descriptor when it goes.
class Descriptor {
public:
    /// Takes the descriptor over; -1 for one that couldn't be opened.
    explicit Descriptor(int number) : m_number(number) {}
    ~Descriptor() {
        if (m_number >= 0)
            close(m_number);
    }
    Q_DISABLE_COPY_MOVE(Descriptor)

    [[nodiscard]] int number() const { return m_number; }
    [[nodiscard]] bool isOpen() const { return m_number >= 0; }

private:
    const int m_number;
};
