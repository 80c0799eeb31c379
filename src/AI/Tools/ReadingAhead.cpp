#include "ReadingAhead.h"

#include "Logging.h"

#include <QCoreApplication>
#include <QtConcurrent/QtConcurrentRun>

#include <QCoroFuture>

ReadingAhead::ReadingAhead() {
    // The end of the program waits for its threads.
    connect(QCoreApplication::instance(), &QCoreApplication::aboutToQuit, this, [this] { m_stop.request_stop(); });
}

ReadingAhead::~ReadingAhead() {
    m_stop.request_stop();
}

QCoro::Task<std::optional<QString>> ReadingAhead::read(std::function<QString()> work) const {
    const std::stop_token stop = stopToken();
    QFuture<QString> reading = QtConcurrent::run(std::move(work));
    std::optional<QString> text;
    try {
        text = co_await reading;
    } catch (const std::exception& error) { // memory ran out, most likely
        qCWarning(Logging::ai) << "reading ahead failed:" << Logging::causes(error);
    }
    if (stop.stop_requested())
        text.reset();
    co_return text;
}
