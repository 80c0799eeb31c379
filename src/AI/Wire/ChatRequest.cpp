#include "ChatRequest.h"

#include "OpenAIChatCodec.h"

#include <QCoroFuture>
#include <QUnhandledException>
#include <QtConcurrent>

#include <exception>
#include <utility>

/// What `work` returns or throws on another thread; a plain future would hide the exception in one of its own.
template <typename Work, typename Result = std::invoke_result_t<Work>>
static QCoro::Task<Result> elsewhere(Work work) {
    QFuture<Result> result = QtConcurrent::run(std::move(work));
    try {
        co_return co_await result;
    } catch (const QUnhandledException& hidden) {
        std::rethrow_exception(hidden.exception());
    }
}

QCoro::Task<AIAgentTurn> ChatRequest::send(std::shared_ptr<URLSession> session,
                                           std::function<URLRequest()> makeRequest) {
    URLRequest request = co_await elsewhere(std::move(makeRequest));
    URLReply reply = co_await URLSession::post(std::move(session), std::move(request));
    // Named, because GCC 12 destroys a closure twice that is made within a co_await expression.
    auto readReply = [reply = std::move(reply)] { return OpenAIChatCodec::readReply(reply.status, reply.body); };
    co_return co_await elsewhere(std::move(readReply));
}
