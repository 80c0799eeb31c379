#include "APIKeyStore.h"

#include "UserDefaults.h"

static QString poolKey(APIProviderKind kind) {
    return QStringLiteral("quillo.") + rawValue(kind) + QStringLiteral("APIKeyPool");
}

static QString olderKey() {
    return QStringLiteral("vellumark.ollamaAPIKey");
}

static QString urlKey() {
    return QStringLiteral("quillo.customAPIURL");
}

QStringList APIKeyStore::allKeys(UserDefaults& defaults, APIProviderKind kind) {
    QStringList pool = defaults.stringListForKey(poolKey(kind)).value_or(QStringList());
    if (!pool.isEmpty() || kind != APIProviderKind::ollama)
        return pool;
    const QString older = defaults.stringForKey(olderKey()).value_or(QString());
    if (older.isEmpty())
        return {};
    defaults.setStringList(poolKey(kind), {older});
    return {older};
}

std::optional<QString> APIKeyStore::load(UserDefaults& defaults, APIProviderKind kind) {
    const QStringList keys = allKeys(defaults, kind);
    return keys.isEmpty() ? std::nullopt : std::optional(keys.first());
}

bool APIKeyStore::hasAnyKey(UserDefaults& defaults) {
    return load(defaults, APIProviderKind::ollama) || load(defaults, APIProviderKind::groq);
}

void APIKeyStore::save(UserDefaults& defaults, const QString& key, APIProviderKind kind) {
    QStringList keys = allKeys(defaults, kind);
    if (!keys.contains(key))
        keys.append(key);
    defaults.setStringList(poolKey(kind), keys);
}

void APIKeyStore::clear(UserDefaults& defaults, APIProviderKind kind) {
    defaults.removeObject(poolKey(kind));
    if (kind == APIProviderKind::ollama)
        defaults.removeObject(olderKey());
}

QString APIKeyStore::defaultURL() {
    return QStringLiteral("https://ollama.com/v1/chat/completions");
}

QString APIKeyStore::loadURL(const UserDefaults& defaults) {
    return defaults.stringForKey(urlKey()).value_or(defaultURL());
}

void APIKeyStore::saveURL(UserDefaults& defaults, const QString& url) {
    defaults.setString(urlKey(), url);
}
