#pragma once

#include "APIProviderKind.h"

#include <QString>
#include <QStringList>

#include <optional>

class UserDefaults;

/// The user's keys for the outside services, a pool each, and the address that stands in for that of Ollama Cloud. Any
/// thread.
namespace APIKeyStore {

/// The pool in the order in which the keys were added. An empty pool of Ollama Cloud is first filled with the one key
/// that an older version kept, if there is one.
[[nodiscard]] QStringList allKeys(UserDefaults& defaults, APIProviderKind kind);

/// The first key of the pool.
[[nodiscard]] std::optional<QString> load(UserDefaults& defaults, APIProviderKind kind);

/// True when the pool of either service has a key.
[[nodiscard]] bool hasAnyKey(UserDefaults& defaults);

/// Adds `key` as it stands to the end of the pool, unless the pool has it.
void save(UserDefaults& defaults, const QString& key, APIProviderKind kind);

/// Empties the pool for good: the key of an older version goes too.
void clear(UserDefaults& defaults, APIProviderKind kind);

/// Where requests to Ollama Cloud go unless the user says otherwise.
[[nodiscard]] QString defaultURL();

/// The user's address as it was typed, or the default one.
[[nodiscard]] QString loadURL(const UserDefaults& defaults);
void saveURL(UserDefaults& defaults, const QString& url);

} // namespace APIKeyStore
