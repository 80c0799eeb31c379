#pragma once

#include <QString>

#include <stdexcept>

/// A provider got no usable answer from its service. `what()` is the sentence for the user.
class AIProviderError : public std::runtime_error {
public:
    enum class Kind { missingAPIKey, http, malformedResponse };

    /// `provider` names the services of which one needs a key.
    [[nodiscard]] static AIProviderError missingAPIKey(const QString& provider);
    /// `status` is that of the reply, -1 when it wasn't one of HTTP.
    [[nodiscard]] static AIProviderError http(int status, const QString& message);
    [[nodiscard]] static AIProviderError malformedResponse();

    [[nodiscard]] Kind kind() const { return m_kind; }
    /// 0 unless the kind is `http`.
    [[nodiscard]] int status() const { return m_status; }
    /// The service's own words; empty unless the kind is `http`.
    [[nodiscard]] QString message() const { return QString::fromStdString(m_message); }

private:
    AIProviderError(Kind kind, const QString& sentence, int status = 0, const QString& message = {});

    Kind m_kind;
    int m_status;
    std::string m_message;
};
