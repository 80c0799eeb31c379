#include "APIKeyStore.h"

#include "UserDefaults.h"

static QString poolKey(APIProviderKind kind) {
    return u"quillo."_qs + rawValue(kind) + u"APIKeyPool"_qs;
}

static QString olderKey() {
    return u"vellumark.ollamaAPIKey"_qs;
}

static QString urlKey() {
    return u"quillo.customAPIURL"_qs;
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
    return u"https://ollama.com/v1/chat/completions"_qs;
}

QString APIKeyStore::loadURL(const UserDefaults& defaults) {
    return defaults.stringForKey(urlKey()).value_or(defaultURL());
}

void APIKeyStore::saveURL(UserDefaults& defaults, const QString& url) {
    defaults.setString(urlKey(), url);
}
