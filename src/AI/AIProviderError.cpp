#include "AIProviderError.h"

AIProviderError::AIProviderError(Kind kind, const QString& sentence, int status, const QString& message)
    : std::runtime_error(sentence.toStdString()), m_kind(kind), m_status(status), m_message(message.toStdString()) {}

AIProviderError AIProviderError::missingAPIKey(const QString& provider) {
    return {Kind::missingAPIKey, u"Add your %1 API key in Quillo > Settings… to use Ask."_qs.arg(provider)};
}

AIProviderError AIProviderError::http(int status, const QString& message) {
    return {Kind::http, u"API error (%1): %2"_qs.arg(QString::number(status), message), status, message};
}

AIProviderError AIProviderError::malformedResponse() {
    return {Kind::malformedResponse, u"Received an unexpected response from the AI provider."_qs};
}
