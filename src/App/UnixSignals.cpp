#include "UnixSignals.h"

#include <QSocketNotifier>

#include <csignal>
#include <cstdlib>

#include <fcntl.h>
#include <unistd.h>

// A handler may do next to nothing, so it writes a byte to this pipe and the event loop reads it.
static int signalPipe[2] = {-1, -1};

static constexpr int handledSignals[] = {SIGHUP, SIGINT, SIGTERM};

static void handleSignal(int) {
    const int savedError = errno;
    const char byte = 0;
    [[maybe_unused]] const ssize_t written = write(signalPipe[1], &byte, 1);
    errno = savedError;
}

UnixSignals::UnixSignals(QObject* parent) : QObject(parent) {
    if (pipe2(signalPipe, O_CLOEXEC | O_NONBLOCK) != 0)
        return;
    m_notifier = new QSocketNotifier(signalPipe[0], QSocketNotifier::Read, this);
    connect(m_notifier, &QSocketNotifier::activated, this, [this] {
        char byte = 0;
        while (read(signalPipe[0], &byte, 1) > 0) {
        }
        Q_EMIT quitRequested();
    });
    for (const int number : handledSignals) {
        struct sigaction action = {};
        sigaction(number, nullptr, &action);
        if (number == SIGHUP && action.sa_handler == SIG_IGN)
            continue; // started to outlive its terminal
        action = {};
        action.sa_handler = handleSignal;
        action.sa_flags = SA_RESTART;
        // The default action, which ends the process, is back after the first; but a closing terminal tells it twice,
        // itself and by its shell.
        if (number != SIGHUP)
            action.sa_flags |= static_cast<int>(SA_RESETHAND);
        sigaction(number, &action, nullptr);
    }
}

UnixSignals::~UnixSignals() {
    if (!m_notifier)
        return;
    for (const int number : handledSignals)
        signal(number, SIG_DFL);
    delete m_notifier;
    for (int& end : signalPipe) {
        close(end);
        end = -1;
    }
}
