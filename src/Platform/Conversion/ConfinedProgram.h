#pragma once

#include <QByteArrayList>
#include <QString>
#include <QStringList>

#include <chrono>
#include <cstdint>
#include <initializer_list>
#include <stop_token>

/// Another program that works on a file that nobody vouches for. It reaches no network, and, where the kernel can see
/// to that, no files but those that are named here. It is the leader of a process group, which ends as a whole: with
/// the program, when it is stopped, when its time is up, and when Quillo ends, however that comes.
struct ConfinedProgram {
    enum class End {
        exited,     ///< by itself or by a signal that wasn't ours
        outOfTime,  ///<
        stopped,    ///<
        notStarted, ///< there is no such program, or there was no memory for it
    };
    struct Result {
        End end = End::notStarted;
        int exitCode = -1; ///< as a shell tells it: 128 more than the signal that ended it
    };

    QByteArrayList command;     ///< the path of the program and its arguments
    QByteArrayList environment; ///< "NAME=value"; nothing else is handed on
    QString workingFolder;
    QStringList readable;   ///< files, and folders with all in them, that it may read and run; may be missing
    QStringList writable;   ///< the same, to be changed as well
    QStringList forSockets; ///< folders in which it may make sockets, which stay, and do nothing else
    std::chrono::milliseconds timeLimit{120'000};
    std::uint64_t mostMemory = std::uint64_t(4) << 30U;  ///< address space, bytes
    std::uint64_t largestFile = std::uint64_t(1) << 30U; ///< that it may write, bytes
    std::uint64_t mostProcessorTime = 240;               ///< seconds

    /// Where programs, libraries and fonts are, and what tells about fonts; nothing of anybody's documents.
    [[nodiscard]] static QStringList commonPlaces();
    /// For `environment`: those of Quillo's own variables that are set.
    [[nodiscard]] static QByteArrayList inherited(std::initializer_list<const char*> names);

    /// Waits for the end. What the program prints is lost. Any thread, several at once.
    [[nodiscard]] Result run(const std::stop_token& stop) const;
};
