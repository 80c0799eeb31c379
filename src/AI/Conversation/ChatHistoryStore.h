#pragma once

#include "ChatSession.h"

#include <QString>

#include <vector>

/// Keeps the conversations about each document in a JSON file of its own, which only the user can read, in
/// `<data folder>/Quillo/Chats` (the data folder of the XDG base directories). No failure is told: a conversation that
/// can't be written stays in memory. Main thread only.
namespace ChatHistoryStore {

/// In the order of the file. Nothing for a file that is missing, can't be read or holds anything unexpected.
[[nodiscard]] std::vector<ChatSession> load(const QString& documentKey);

/// Replaces the whole file, a damaged one too; a reader never sees half of it.
void save(const std::vector<ChatSession>& sessions, const QString& documentKey);

} // namespace ChatHistoryStore
