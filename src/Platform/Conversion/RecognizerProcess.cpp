#include "RecognizerProcess.h"

#include "Descriptor.h"
#include "RecognizerMessage.h"

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <cstdint>
#include <memory>
#include <utility>

#include <poll.h>
#include <spawn.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>

namespace {

using Clock = std::chrono::steady_clock;

QByteArrayList& currentCommand() {
    static QByteArrayList command;
    return command;
}

/// The program, as long as this lives.
class Child {
public:
    /// Null when it can't be started.
    static std::unique_ptr<Child> start(const QByteArrayList& command) {
        int ends[2] = {-1, -1};
        if (socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, ends) != 0)
            return nullptr;
        const Descriptor theirs(ends[1]);
        std::unique_ptr<Child> child(new Child(ends[0]));
        std::vector<char*> arguments;
        for (const QByteArray& argument : command)
            arguments.push_back(const_cast<char*>(argument.constData()));
        arguments.push_back(nullptr);
        posix_spawn_file_actions_t files;
        posix_spawn_file_actions_init(&files);
        posix_spawn_file_actions_adddup2(&files, theirs.number(), STDIN_FILENO);
        posix_spawn_file_actions_adddup2(&files, theirs.number(), STDOUT_FILENO);
        const int failure =
            posix_spawn(&child->m_process, arguments.front(), &files, nullptr, arguments.data(), environ);
        posix_spawn_file_actions_destroy(&files);
        if (failure != 0)
            child->m_process = -1;
        return failure == 0 ? std::move(child) : nullptr;
    }

    ~Child() {
        if (m_process <= 0)
            return;
        kill(m_process, SIGKILL);
        while (waitpid(m_process, nullptr, 0) < 0 && errno == EINTR) {
        }
    }
    Q_DISABLE_COPY_MOVE(Child)

    /// For the transfers that follow.
    void setEnd(Clock::time_point end, const std::stop_token& stop) {
        m_end = end;
        m_stop = stop;
    }

    bool send(const void* data, std::size_t size) {
        return transfer(size, POLLOUT, [this, data, size](std::size_t done) {
            return ::send(m_socket.number(), static_cast<const char*>(data) + done, size - done,
                          MSG_NOSIGNAL | MSG_DONTWAIT);
        });
    }

    bool receive(void* data, std::size_t size) {
        return transfer(size, POLLIN, [this, data, size](std::size_t done) {
            return recv(m_socket.number(), static_cast<char*>(data) + done, size - done, MSG_DONTWAIT);
        });
    }

private:
    explicit Child(int socket) : m_socket(socket) {}

    /// False when the other end is gone, it is too late, or a stop was requested.
    template <typename Step>
    bool transfer(std::size_t size, short readiness, Step step) {
        constexpr int look = 20; // milliseconds
        std::size_t done = 0;
        while (done < size) {
            if (m_stop.stop_requested() || Clock::now() > m_end)
                return false;
            pollfd waiting{m_socket.number(), readiness, 0};
            if (poll(&waiting, 1, look) <= 0)
                continue;
            const ssize_t moved = step(done);
            if (moved > 0)
                done += std::size_t(moved);
            else if (moved == 0 || (errno != EINTR && errno != EAGAIN))
                return false;
        }
        return true;
    }

    const Descriptor m_socket;
    pid_t m_process = -1;
    Clock::time_point m_end;
    std::stop_token m_stop;
};

std::optional<std::vector<TextRecognizer::Line>> ask(Child& child, const QImage& gray, int dotsPerInch) {
    const RecognizerMessage::Picture picture{RecognizerMessage::Picture::mark, gray.width(), gray.height(),
                                             std::max(0, dotsPerInch)};
    if (!child.send(&picture, sizeof picture))
        return std::nullopt;
    for (int y = 0; y < gray.height(); ++y)
        if (!child.send(gray.constScanLine(y), std::size_t(gray.width())))
            return std::nullopt;
    std::uint32_t size = 0;
    if (!child.receive(&size, sizeof size) || size > RecognizerMessage::mostBytes)
        return std::nullopt;
    QByteArray answer(qsizetype(size), Qt::Uninitialized);
    if (!child.receive(answer.data(), size))
        return std::nullopt;
    return RecognizerMessage::decoded(answer);
}

} // namespace

void RecognizerProcess::setCommand(QByteArrayList command) {
    currentCommand() = std::move(command);
}

std::optional<std::vector<TextRecognizer::Line>> RecognizerProcess::recognize(const QImage& image, int dotsPerInch,
                                                                              const std::stop_token& stop,
                                                                              std::chrono::milliseconds limit) {
    thread_local std::unique_ptr<Child> child;
    if (currentCommand().isEmpty() || !TextRecognizer::isReadable(image))
        return TextRecognizer::recognize(image, dotsPerInch, stop);
    const QImage gray = TextRecognizer::grayOnWhite(image);
    if (gray.isNull())
        return std::nullopt;
    if (!child)
        child = Child::start(currentCommand());
    if (!child)
        return std::nullopt;
    child->setEnd(Clock::now() + limit, stop);
    auto lines = ask(*child, gray, dotsPerInch);
    if (!lines)
        child.reset();
    return lines;
}
