#pragma once

#include "ChatSession.h"

#include <QByteArray>

#include <optional>
#include <vector>

/// The JSON form in which conversations are stored. Times are in whole seconds of UTC.
namespace ChatSessionCoder {

[[nodiscard]] QByteArray encode(const std::vector<ChatSession>& sessions);

/// None when any field of any turn is missing or of the wrong kind. Unknown keys are passed over.
[[nodiscard]] std::optional<std::vector<ChatSession>> decode(const QByteArray& json);

} // namespace ChatSessionCoder
