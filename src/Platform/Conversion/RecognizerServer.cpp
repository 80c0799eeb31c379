#include "RecognizerServer.h"

#include "Descriptor.h"
#include "RecognizerMessage.h"
#include "TextRecognizer.h"

#include <cerrno>
#include <csignal>

#include <fcntl.h>
#include <sys/prctl.h>
#include <sys/resource.h>
#include <unistd.h>

namespace {

/// False when the other end is gone.
template <typename Step>
bool transfer(std::size_t size, Step step) {
    std::size_t done = 0;
    while (done < size) {
        const ssize_t moved = step(done);
        if (moved > 0)
            done += std::size_t(moved);
        else if (moved == 0 || errno != EINTR)
            return false;
    }
    return true;
}

bool receive(void* data, std::size_t size) {
    return transfer(size, [data, size](std::size_t done) {
        return read(STDIN_FILENO, static_cast<char*>(data) + done, size - done);
    });
}

bool answer(int output, const void* data, std::size_t size) {
    return transfer(
        size, [=](std::size_t done) { return write(output, static_cast<const char*>(data) + done, size - done); });
}

/// Where the answers go. What a library prints must not come among them, so the standard output leads nowhere.
int takeOutput() {
    const int output = dup(STDOUT_FILENO);
    const Descriptor nowhere(open("/dev/null", O_WRONLY | O_CLOEXEC));
    if (nowhere.isOpen())
        dup2(nowhere.number(), STDOUT_FILENO);
    return output;
}

} // namespace

int RecognizerServer::run() {
    prctl(PR_SET_PDEATHSIG, SIGKILL); // nobody wants the answer to a page any more
    constexpr int behindWindows = 5;
    setpriority(PRIO_PROCESS, 0, behindWindows);
    const rlimit none{0, 0};
    setrlimit(RLIMIT_CORE, &none); // no page lies about after a crash
    const Descriptor output(takeOutput());
    RecognizerMessage::Picture picture;
    while (receive(&picture, sizeof picture)) {
        if (!picture.isSound())
            return 1;
        QImage image(picture.width, picture.height, QImage::Format_Grayscale8);
        if (image.isNull())
            return 1;
        for (int y = 0; y < image.height(); ++y)
            if (!receive(image.scanLine(y), std::size_t(image.width())))
                return 1;
        const QByteArray lines = RecognizerMessage::encoded(TextRecognizer::recognize(image, picture.dotsPerInch));
        const auto size = std::uint32_t(lines.size());
        if (!answer(output.number(), &size, sizeof size) || !answer(output.number(), lines.constData(), size))
            return 1;
    }
    return 0;
}
