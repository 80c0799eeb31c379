#include "URLSession.h"

#include "URLSessionError.h"

#include <QCoreApplication>
#include <QCoroNetworkReply>
#include <QNetworkReply>
#include <QNetworkRequest>
#include <QPointer>

#include <algorithm>

namespace {

/// What a signal is being sent from mustn't be deleted at once.
struct DeleteLater {
    void operator()(QObject* object) const { object->deleteLater(); }
};

/// Whether the server answered, be it with a refusal.
bool isAnswered(QNetworkReply::NetworkError error, int status) {
    if (error == QNetworkReply::NoError)
        return true;
    constexpr int firstRefusal = 400;
    // Qt's errors for the statuses from 400 on: one for 400 itself, those of the content, and those of the server.
    const bool standsForStatus =
        error == QNetworkReply::ProtocolInvalidOperationError ||
        (error > QNetworkReply::UnknownProxyError && error <= QNetworkReply::UnknownContentError) ||
        error >= QNetworkReply::InternalServerError;
    return status >= firstRefusal && standsForStatus;
}

/// What a connection may hold ready for a main thread that is busy, in bytes.
constexpr qint64 readBufferSize = qint64(1) << 18;

/// Adds what is there of a reply, up to one byte more than `limit` in all, so that a packed one isn't unpacked any
/// further. False once it is longer than that.
bool readWithin(qint64 limit, QNetworkReply& reply, QByteArray& body) {
    for (QByteArray piece; reply.isOpen() && body.size() <= limit; body += piece) {
        piece = reply.read(std::min(readBufferSize, limit + 1 - body.size()));
        if (piece.isEmpty())
            break;
    }
    return body.size() <= limit;
}

/// The status of a redirect to an answer that is to be fetched, not asked for again.
constexpr int seeOther = 303;

bool haveSameOrigin(const QUrl& first, const QUrl& second) {
    const int defaultPort = first.scheme() == u"https" ? 443 : 80;
    return first.scheme() == second.scheme() && first.host() == second.host() &&
           first.port(defaultPort) == second.port(defaultPort);
}

void checkURL(const QUrl& url) {
    const QString scheme = url.scheme();
    if ((scheme != u"https" && scheme != u"http") || url.host().isEmpty()) {
        throw URLSessionError(
            QStringLiteral("The API URL isn't one of a web service. It must begin with https:// or http://. Change "
                           "it in Edit > Settings…"));
    }
}

} // namespace

std::shared_ptr<URLSession> URLSession::create(std::chrono::milliseconds timeout, qint64 maximumReplySize) {
    return {new URLSession(timeout, maximumReplySize), DeleteLater()};
}

URLSession::URLSession(std::chrono::milliseconds timeout, qint64 maximumReplySize)
    : m_timeout(timeout), m_maximumReplySize(maximumReplySize), m_network(this) {
    connect(QCoreApplication::instance(), &QCoreApplication::aboutToQuit, this, &URLSession::cancelAll);
}

void URLSession::cancelAll() {
    m_isCancelled = true;
    // What waits for one reply may delete others.
    std::vector<QPointer<QNetworkReply>> replies;
    for (QNetworkReply* reply : m_network.findChildren<QNetworkReply*>())
        replies.emplace_back(reply);
    for (const auto& reply : replies) {
        if (reply)
            reply->abort();
    }
}

QNetworkRequest URLSession::networkRequest(const URLRequest& request) const {
    QNetworkRequest result(request.url);
    result.setTransferTimeout(static_cast<int>(m_timeout.count()));
    result.setAttribute(QNetworkRequest::RedirectPolicyAttribute, QNetworkRequest::ManualRedirectPolicy);
    for (const auto attribute :
         {QNetworkRequest::CookieLoadControlAttribute, QNetworkRequest::CookieSaveControlAttribute,
          QNetworkRequest::AuthenticationReuseAttribute})
        result.setAttribute(attribute, QNetworkRequest::Manual);
    result.setHeader(QNetworkRequest::UserAgentHeader, QStringLiteral("Quillo"));
    for (const auto& [name, value] : request.headers)
        result.setRawHeader(name, value);
    return result;
}

QCoro::Task<URLReply> URLSession::post(std::shared_ptr<URLSession> session, URLRequest request) {
    constexpr int maximumRedirections = 10;
    const AIService service{request.isForBuiltInService, request.url.host()};
    for (int count = 0; count <= maximumRedirections; ++count) {
        checkURL(request.url);
        Answer answer = co_await postOnce(session, request);
        if (answer.redirection.isEmpty())
            co_return answer.reply;
        if (answer.reply.status == seeOther || !haveSameOrigin(answer.redirection, request.url))
            throw URLSessionError::forNetworkError(QNetworkReply::InsecureRedirectError, service);
        request.url = answer.redirection;
    }
    throw URLSessionError::forNetworkError(QNetworkReply::TooManyRedirectsError, service);
}

QCoro::Task<URLSession::Answer> URLSession::postOnce(std::shared_ptr<URLSession> session, URLRequest request) {
    const std::unique_ptr<QNetworkReply, DeleteLater> reply(
        session->m_network.post(session->networkRequest(request), request.body));
    reply->setReadBufferSize(readBufferSize);

    Answer answer;
    bool isTooLong = false;
    const QObject whileWaiting;
    QObject::connect(reply.get(), &QIODevice::readyRead, &whileWaiting, [&, source = reply.get()] {
        if (isTooLong)
            return;
        isTooLong = !readWithin(session->m_maximumReplySize, *source, answer.reply.body);
        if (isTooLong)
            source->abort(); // the last to be done here: the coroutine goes on within
    });
    co_await reply.get();

    const AIService service{request.isForBuiltInService, request.url.host()};
    if (isTooLong || !readWithin(session->m_maximumReplySize, *reply, answer.reply.body))
        throw URLSessionError(service.name() + QStringLiteral(" sent an answer that is too long."));
    if (session->m_isCancelled)
        throw URLSessionError(QStringLiteral("The question was given up because Quillo was closed."));
    const QVariant status = reply->attribute(QNetworkRequest::HttpStatusCodeAttribute);
    if (status.isValid())
        answer.reply.status = status.toInt();
    if (!isAnswered(reply->error(), answer.reply.status))
        throw URLSessionError::forNetworkError(reply->error(), service);
    const QUrl target = reply->attribute(QNetworkRequest::RedirectionTargetAttribute).toUrl();
    if (!target.isEmpty())
        answer.redirection = request.url.resolved(target);
    co_return answer;
}
