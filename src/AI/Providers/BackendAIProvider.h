#pragma once

#include "AIProvider.h"

#include <QUrl>

#include <memory>

class URLSession;

/// Asks the built-in AI service, which needs no key of the user's: each request is signed with the device's own. The
/// service chooses the model.
class BackendAIProvider : public AIProvider {
public:
    explicit BackendAIProvider(QUrl endpoint = defaultEndpoint());
    BackendAIProvider(QUrl endpoint, std::shared_ptr<URLSession> session);

    /// On the host that Quillo was built for.
    [[nodiscard]] static QUrl defaultEndpoint();
    /// False for a stand-in where no service can be: a host without a name, or one of the names that are set apart for
    /// leading nowhere (RFC 6761).
    [[nodiscard]] static bool isConfigured(const QUrl& endpoint = defaultEndpoint());

    /// Throws NoBuiltInServiceError, without a request, when there is no service to ask.
    QCoro::Task<AIAgentTurn> send(std::vector<AIMessage> history, std::vector<AssistantTool> tools, QString system,
                                  AIModelPreference preference) override;

private:
    const QUrl m_endpoint;
    const std::shared_ptr<URLSession> m_session;
};
