#include "AIProviderError.h"

AIProviderError::AIProviderError(Kind kind, const QString& sentence, int status, const QString& message)
    : std::runtime_error(sentence.toStdString()), m_kind(kind), m_status(status), m_message(message.toStdString()) {}

AIProviderError AIProviderError::missingAPIKey(const QString& provider) {
    return {Kind::missingAPIKey, QStringLiteral("Add your %1 API key in Quillo > Settings… to use Ask.").arg(provider)};
}

AIProviderError AIProviderError::http(int status, const QString& message) {
    return {Kind::http, QStringLiteral("API error (%1): %2").arg(QString::number(status), message), status, message};
}

AIProviderError AIProviderError::malformedResponse() {
    return {Kind::malformedResponse, QStringLiteral("Received an unexpected response from the AI provider.")};
}
