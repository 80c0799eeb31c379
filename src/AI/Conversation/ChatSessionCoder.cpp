#include "ChatSessionCoder.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QRegularExpression>

#include <functional>

namespace {

constexpr QLatin1String idKey("id");
constexpr QLatin1String titleKey("title");
constexpr QLatin1String turnsKey("turns");
constexpr QLatin1String updatedAtKey("updatedAt");
constexpr QLatin1String roleKey("role");
constexpr QLatin1String textKey("text");

QJsonObject encodeTurn(const AssistantTurn& turn) {
    return {{idKey, turn.id.toString(QUuid::WithoutBraces)},
            {roleKey, AssistantTurn::rawValue(turn.role)},
            {textKey, turn.text}};
}

QJsonObject encodeSession(const ChatSession& session) {
    QJsonArray turns;
    for (const AssistantTurn& turn : session.turns)
        turns.append(encodeTurn(turn));
    return {{idKey, session.id.toString(QUuid::WithoutBraces)},
            {titleKey, session.title},
            {turnsKey, turns},
            {updatedAtKey, session.updatedAt.toUTC().toString(Qt::ISODate)}};
}

std::optional<QString> stringIn(const QJsonObject& object, QLatin1String key) {
    const QJsonValue value = object.value(key);
    return value.isString() ? std::optional(value.toString()) : std::nullopt;
}

std::optional<QUuid> uuidIn(const QJsonObject& object) {
    static const QRegularExpression canonical(
        QStringLiteral("\\A[0-9A-Fa-f]{8}(-[0-9A-Fa-f]{4}){3}-[0-9A-Fa-f]{12}\\z"));
    const std::optional<QString> text = stringIn(object, idKey);
    return text && canonical.match(*text).hasMatch() ? std::optional(QUuid::fromString(*text)) : std::nullopt;
}

std::optional<QDateTime> timeIn(const QJsonObject& object) {
    static const QRegularExpression wholeSeconds(
        QStringLiteral("\\A\\d{4}-\\d\\d-\\d\\dT\\d\\d:\\d\\d:\\d\\d(Z|[+-]\\d\\d:?\\d\\d)\\z"));
    const std::optional<QString> text = stringIn(object, updatedAtKey);
    if (!text || !wholeSeconds.match(*text).hasMatch())
        return std::nullopt;
    const QDateTime time = QDateTime::fromString(*text, Qt::ISODate);
    return time.isValid() ? std::optional(time.toUTC()) : std::nullopt;
}

std::optional<AssistantTurn> decodeTurn(const QJsonObject& object) {
    const std::optional<QUuid> id = uuidIn(object);
    const std::optional<QString> text = stringIn(object, textKey);
    const auto role = AssistantTurn::roleFromRawValue(stringIn(object, roleKey).value_or(QString()));
    if (!id || !text || !role)
        return std::nullopt;
    return AssistantTurn{*id, *role, *text};
}

/// None when the value isn't an array of objects that `decode` can all read.
template <typename Item>
std::optional<std::vector<Item>> decodeArray(const QJsonValue& value,
                                             std::optional<Item> (*decode)(const QJsonObject& object)) {
    if (!value.isArray())
        return std::nullopt;
    std::vector<Item> items;
    const QJsonArray array = value.toArray();
    for (const auto& element : array) {
        const std::optional<Item> item = decode(element.toObject());
        if (!item)
            return std::nullopt;
        items.push_back(*item);
    }
    return items;
}

std::optional<ChatSession> decodeSession(const QJsonObject& object) {
    const std::optional<QUuid> id = uuidIn(object);
    const std::optional<QString> title = stringIn(object, titleKey);
    const auto turns = decodeArray(object.value(turnsKey), decodeTurn);
    const std::optional<QDateTime> updatedAt = timeIn(object);
    if (!id || !title || !turns || !updatedAt)
        return std::nullopt;
    return ChatSession{*id, *title, *turns, *updatedAt};
}

} // namespace

QByteArray ChatSessionCoder::encode(const std::vector<ChatSession>& sessions) {
    QJsonArray array;
    for (const ChatSession& session : sessions)
        array.append(encodeSession(session));
    return QJsonDocument(array).toJson(QJsonDocument::Compact);
}

std::optional<std::vector<ChatSession>> ChatSessionCoder::decode(const QByteArray& json) {
    const QJsonDocument document = QJsonDocument::fromJson(json);
    if (!document.isArray())
        return std::nullopt;
    return decodeArray(document.array(), decodeSession);
}
