#pragma once

#include "AIProvider.h"

#include <QUrl>

#include <functional>
#include <memory>

class URLSession;
class UserDefaults;

/// Asks Ollama Cloud and Groq with the user's own keys. Every hour another key has the first turn; a key that is
/// refused or has used up its share is followed by the next one.
class RotatingAIProvider : public AIProvider {
public:
    /// Seconds since 1970-01-01 UTC.
    using Clock = std::function<qint64()>;

    /// The keys, and the address for Ollama Cloud, are read from `defaults`, which must outlive the provider, on each
    /// call.
    explicit RotatingAIProvider(UserDefaults& defaults, QUrl groqEndpoint = defaultGroqEndpoint());
    RotatingAIProvider(UserDefaults& defaults, QUrl groqEndpoint, std::shared_ptr<URLSession> session, Clock clock);

    [[nodiscard]] static QUrl defaultGroqEndpoint();

    QCoro::Task<AIAgentTurn> send(std::vector<AIMessage> history, std::vector<AssistantTool> tools, QString system,
                                  AIModelPreference preference) override;

private:
    struct AICredential {
        QString label; ///< for messages
        QUrl endpoint;
        QString model;
        QString apiKey;
    };

    [[nodiscard]] QUrl ollamaEndpoint() const;
    [[nodiscard]] std::vector<AICredential> allCredentials(AIModelPreference preference) const;
    [[nodiscard]] std::vector<AICredential> credentialsStartingAtCurrentHour(AIModelPreference preference) const;

    static QCoro::Task<AIAgentTurn> tryInTurn(std::shared_ptr<URLSession> session,
                                              std::vector<AICredential> credentials, QJsonArray messages,
                                              QJsonArray toolSpecs);
    static QCoro::Task<AIAgentTurn> performRequest(std::shared_ptr<URLSession> session, AICredential credential,
                                                   QJsonArray messages, QJsonArray toolSpecs);

    UserDefaults& m_defaults;
    const QUrl m_groqEndpoint;
    const std::shared_ptr<URLSession> m_session;
    const Clock m_clock;
};
