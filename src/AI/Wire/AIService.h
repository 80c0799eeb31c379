#pragma once

#include <QString>

/// A chat-completions service as sentences speak of it.
struct AIService {
    /// The one that Quillo brings, whose address is no concern of the user's.
    bool isBuiltIn = false;
    QString host; ///< of one at an address from Settings

    /// Begins a sentence.
    [[nodiscard]] QString name() const {
        return isBuiltIn ? QStringLiteral("Quillo's built-in AI service")
                         : QStringLiteral("The AI service at “%1”").arg(host);
    }
};
