#include "FileWork.h"

#include <QDeadlineTimer>
#include <QMutex>
#include <QMutexLocker>
#include <QThreadPool>
#include <QWaitCondition>

namespace {

class Recipient;

/// What a thread knows of the one that it works for.
struct Address {
    QMutex mutex;
    // Guarded by `mutex`.
    Recipient* recipient = nullptr; ///< null when it is gone
    bool isAwaited = false;         ///< the recipient's thread waits for the result
    FileWork::Result result;        ///< once it is there, for who waits
    QWaitCondition arrived;
};

/// Lives as long as the receiver, or until it has the result.
class Recipient : public QObject {
public:
    Recipient(QObject* receiver, std::function<void(const FileWork::Result&)> done)
        : QObject(receiver), m_done(std::move(done)) {
        address->recipient = this;
    }
    ~Recipient() override {
        const QMutexLocker lock(&address->mutex);
        address->recipient = nullptr;
    }

    void take(const FileWork::Result& result) {
        const auto done = std::move(m_done); // which may delete the receiver
        deleteLater();
        done(result);
    }

    const std::shared_ptr<Address> address = std::make_shared<Address>();

private:
    std::function<void(const FileWork::Result&)> m_done;
};

} // namespace

/// Never destroyed, which would wait for its threads.
static QThreadPool& threads() {
    constexpr int mostThreads = 64; // each may be stuck
    static auto* pool = [] {
        auto* made = new QThreadPool;
        made->setMaxThreadCount(mostThreads);
        return made;
    }();
    return *pool;
}

void FileWork::start(QObject* receiver, std::function<Result()> work, std::function<void(const Result& result)> done,
                     std::chrono::milliseconds patience) {
    auto* const recipient = new Recipient(receiver, std::move(done));
    const std::shared_ptr<Address> awaited = recipient->address;
    awaited->isAwaited = patience.count() > 0;
    threads().start([address = recipient->address, work = std::move(work)] {
        Result result = work();
        const QMutexLocker lock(&address->mutex);
        if (address->isAwaited) {
            address->result = std::move(result);
            address->arrived.wakeAll();
        } else if (Recipient* to = address->recipient) {
            QMetaObject::invokeMethod(
                to, [to, result = std::move(result)] { to->take(result); }, Qt::QueuedConnection);
        }
    });
    if (patience.count() == 0)
        return;
    Result result;
    {
        const QMutexLocker lock(&awaited->mutex);
        const QDeadlineTimer deadline(patience);
        while (!awaited->result && awaited->arrived.wait(&awaited->mutex, deadline)) {
        }
        awaited->isAwaited = false;
        result = std::move(awaited->result);
    }
    if (result)
        recipient->take(result);
}
