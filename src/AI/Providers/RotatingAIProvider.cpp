#include "RotatingAIProvider.h"

#include "AIProviderError.h"
#include "APIKeyStore.h"
#include "ChatRequest.h"
#include "Logging.h"
#include "OpenAIChatCodec.h"
#include "URLSession.h"

#include <QDateTime>
#include <QJsonDocument>

#include <algorithm>
#include <optional>
#include <utility>

namespace {

QString ollamaModel(AIModelPreference preference) {
    switch (preference) {
    case AIModelPreference::highPerformance:
        return QStringLiteral("gpt-oss:120b-cloud");
    case AIModelPreference::balanced:
        return QStringLiteral("gpt-oss:70b-cloud");
    case AIModelPreference::fast:
        break;
    }
    return QStringLiteral("gpt-oss:8b-cloud");
}

QString groqModel(AIModelPreference preference) {
    switch (preference) {
    case AIModelPreference::highPerformance:
        return QStringLiteral("llama3-70b-8192");
    case AIModelPreference::balanced:
        return QStringLiteral("llama-3.1-8b-instant");
    case AIModelPreference::fast:
        break;
    }
    return QStringLiteral("llama3-8b-8192");
}

/// The key as it is sent: a line break that was copied along with it would end the header.
QString sendable(QString key) {
    key.removeIf([](QChar c) { return c == u'\r' || c == u'\n' || c == u'\0'; });
    return key;
}

/// Some services repeat the key that they refuse; a message is shown and kept with the conversation. What is too short
/// for a secret is a word for a server that asks for none, and the message may well use it.
AIProviderError withoutKey(const AIProviderError& error, const QString& key) {
    constexpr qsizetype shortestSecret = 8;
    const QString sent = sendable(key).trimmed();
    if (error.kind() != AIProviderError::Kind::http || sent.size() < shortestSecret)
        return error;
    return AIProviderError::http(error.status(), error.message().replace(sent, QStringLiteral("…")));
}

bool asksForAnotherKey(const AIProviderError& error) {
    return error.kind() == AIProviderError::Kind::http && (error.status() == 401 || error.status() == 429);
}

} // namespace

RotatingAIProvider::RotatingAIProvider(UserDefaults& defaults, QUrl groqEndpoint)
    : RotatingAIProvider(defaults, std::move(groqEndpoint), URLSession::create(), QDateTime::currentSecsSinceEpoch) {}

RotatingAIProvider::RotatingAIProvider(UserDefaults& defaults, QUrl groqEndpoint, std::shared_ptr<URLSession> session,
                                       Clock clock)
    : m_defaults(defaults), m_groqEndpoint(std::move(groqEndpoint)), m_session(std::move(session)),
      m_clock(std::move(clock)) {}

QUrl RotatingAIProvider::defaultGroqEndpoint() {
    return QUrl(QStringLiteral("https://api.groq.com/openai/v1/chat/completions"));
}

/// The default where the user's address can't be one.
QUrl RotatingAIProvider::ollamaEndpoint() const {
    const QUrl url(APIKeyStore::loadURL(m_defaults), QUrl::StrictMode);
    return url.isValid() && !url.isEmpty() ? url : QUrl(APIKeyStore::defaultURL());
}

/// Both pools, key by key, Ollama Cloud first.
std::vector<RotatingAIProvider::AICredential> RotatingAIProvider::allCredentials(AIModelPreference preference) const {
    const QStringList ollamaKeys = APIKeyStore::allKeys(m_defaults, APIProviderKind::ollama);
    const QStringList groqKeys = APIKeyStore::allKeys(m_defaults, APIProviderKind::groq);
    std::vector<AICredential> credentials;
    for (qsizetype i = 0; i < std::max(ollamaKeys.size(), groqKeys.size()); ++i) {
        if (i < ollamaKeys.size())
            credentials.push_back(
                {QStringLiteral("Ollama Cloud"), ollamaEndpoint(), ollamaModel(preference), ollamaKeys[i]});
        if (i < groqKeys.size())
            credentials.push_back({QStringLiteral("Groq"), m_groqEndpoint, groqModel(preference), groqKeys[i]});
    }
    return credentials;
}

std::vector<RotatingAIProvider::AICredential>
RotatingAIProvider::credentialsStartingAtCurrentHour(AIModelPreference preference) const {
    std::vector<AICredential> list = allCredentials(preference);
    if (list.empty())
        return list;
    constexpr qint64 secondsPerHour = 3600;
    const qint64 start = m_clock() / secondsPerHour % static_cast<qint64>(list.size());
    std::rotate(list.begin(), list.begin() + start, list.end());
    return list;
}

QCoro::Task<AIAgentTurn> RotatingAIProvider::send(std::vector<AIMessage> history, std::vector<AssistantTool> tools,
                                                  QString system, AIModelPreference preference) {
    return tryInTurn(m_session, credentialsStartingAtCurrentHour(preference),
                     OpenAIChatCodec::encodeMessages(history, system), OpenAIChatCodec::encodeToolSpecs(tools));
}

QCoro::Task<AIAgentTurn> RotatingAIProvider::tryInTurn(std::shared_ptr<URLSession> session,
                                                       std::vector<AICredential> credentials, QJsonArray messages,
                                                       QJsonArray toolSpecs) {
    AIProviderError lastError = AIProviderError::missingAPIKey(QStringLiteral("Ollama Cloud or Groq"));
    for (const AICredential& credential : credentials) {
        try {
            co_return co_await performRequest(session, credential, messages, toolSpecs);
        } catch (const AIProviderError& error) {
            if (!asksForAnotherKey(error))
                throw withoutKey(error, credential.apiKey);
            qCInfo(Logging::ai) << credential.label << "refused with" << error.status() << "- trying the next key";
            lastError = AIProviderError::http(error.status(),
                                              credential.label + QStringLiteral(" key rejected or rate-limited"));
        }
    }
    throw AIProviderError(lastError);
}

QCoro::Task<AIAgentTurn> RotatingAIProvider::performRequest(std::shared_ptr<URLSession> session,
                                                            AICredential credential, QJsonArray messages,
                                                            QJsonArray toolSpecs) {
    return ChatRequest::send(std::move(session), [credential = std::move(credential), messages = std::move(messages),
                                                  toolSpecs = std::move(toolSpecs)] {
        const QJsonObject body{{QStringLiteral("model"), credential.model},
                               {QStringLiteral("messages"), messages},
                               {QStringLiteral("tools"), toolSpecs}};
        return URLRequest{
            credential.endpoint,
            {{"Authorization", "Bearer " + sendable(credential.apiKey).toUtf8()}, {"Content-Type", "application/json"}},
            QJsonDocument(body).toJson(QJsonDocument::Compact)};
    });
}
