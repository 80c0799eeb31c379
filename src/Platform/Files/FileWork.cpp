#include "FileWork.h"

#include <QMutex>
#include <QMutexLocker>
#include <QThreadPool>

namespace {

class Recipient;

/// What a thread knows of the one that it works for.
struct Address {
    QMutex mutex;
    Recipient* recipient = nullptr; ///< guarded by `mutex`; null when it is gone
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

void FileWork::start(QObject* receiver, std::function<Result()> work, std::function<void(const Result& result)> done) {
    const auto* recipient = new Recipient(receiver, std::move(done));
    threads().start([address = recipient->address, work = std::move(work)] {
        Result result = work();
        const QMutexLocker lock(&address->mutex);
        if (Recipient* to = address->recipient)
            QMetaObject::invokeMethod(
                to, [to, result = std::move(result)] { to->take(result); }, Qt::QueuedConnection);
    });
}
