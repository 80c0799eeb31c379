#include "BackendAIProvider.h"

#include "ChatRequest.h"
#include "DeviceIdentity.h"
#include "NoBuiltInServiceError.h"
#include "OpenAIChatCodec.h"
#include "URLSession.h"

#include <QDateTime>
#include <QJsonDocument>

#include <utility>

/// The signature is over the very bytes that are sent.
static URLRequest signedRequest(const QUrl& endpoint, const QJsonObject& body) {
    if (!BackendAIProvider::isConfigured(endpoint))
        throw NoBuiltInServiceError();
    const QByteArray bodyBytes = QJsonDocument(body).toJson(QJsonDocument::Compact);
    const qint64 timestampMillis = QDateTime::currentMSecsSinceEpoch();
    const QByteArray publicKey = DeviceIdentity::publicKeyBase64();
    const QByteArray signature = DeviceIdentity::sign(bodyBytes, timestampMillis);
    return {endpoint,
            {{"Content-Type", "application/json"},
             {"X-Device-Public-Key", publicKey},
             {"X-Device-Timestamp", QByteArray::number(timestampMillis)},
             {"X-Device-Signature", signature}},
            bodyBytes,
            true};
}

BackendAIProvider::BackendAIProvider(QUrl endpoint) : BackendAIProvider(std::move(endpoint), URLSession::create()) {}

BackendAIProvider::BackendAIProvider(QUrl endpoint, std::shared_ptr<URLSession> session)
    : m_endpoint(std::move(endpoint)), m_session(std::move(session)) {}

QUrl BackendAIProvider::defaultEndpoint() {
    return QUrl(QStringLiteral("https://" QUILLO_ASSISTANT_HOST "/api/v1/chat/completions"));
}

bool BackendAIProvider::isConfigured(const QUrl& endpoint) {
    QString host = endpoint.host();
    if (host.endsWith(u'.'))
        host.chop(1);
    return !host.isEmpty() && host != u"invalid" && !host.endsWith(QLatin1String(".invalid"));
}

QCoro::Task<AIAgentTurn> BackendAIProvider::send(std::vector<AIMessage> history, std::vector<AssistantTool> tools,
                                                 QString system, AIModelPreference preference) {
    const QJsonObject body{{QStringLiteral("messages"), OpenAIChatCodec::encodeMessages(history, system)},
                           {QStringLiteral("tools"), OpenAIChatCodec::encodeToolSpecs(tools)},
                           {QStringLiteral("preference"), info(preference).rawValue}};
    return ChatRequest::send(m_session, [endpoint = m_endpoint, body] { return signedRequest(endpoint, body); });
}
