#include "SignatureStore.h"

#include "ImageOperations.h"
#include "UserDefaults.h"

#include <QBuffer>
#include <QImageReader>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include <algorithm>

// The stored form: a list of objects with these two keys.
static const QString storeKey = QStringLiteral("quillo.savedSignatures");
static const QString idKey = QStringLiteral("id");
static const QString pngKey = QStringLiteral("pngData");

/// Pixels a side. What is drawn here has far fewer; a stored picture may come from anywhere.
static constexpr int largestSide = 4096;

static QString textOf(const QUuid& id) {
    return id.toString(QUuid::WithoutBraces).toUpper();
}

static std::optional<SavedSignature> decodedSignature(const QJsonObject& object) {
    const QString idText = object.value(idKey).toString();
    const QUuid id = QUuid::fromString(idText);
    const QJsonValue png = object.value(pngKey);
    if (textOf(id) != idText.toUpper() || !png.isString())
        return std::nullopt;
    auto data = QByteArray::fromBase64Encoding(png.toString().toLatin1(), QByteArray::AbortOnBase64DecodingErrors);
    if (!data)
        return std::nullopt;
    return SavedSignature{id, *data};
}

/// Nothing at all when any part of `json` is not as it should be.
static std::vector<SavedSignature> decodedSignatures(const QByteArray& json) {
    std::vector<SavedSignature> signatures;
    const QJsonArray list = QJsonDocument::fromJson(json).array();
    for (const auto& element : list) {
        auto signature = decodedSignature(element.toObject());
        if (!signature)
            return {};
        signatures.push_back(*std::move(signature));
    }
    return signatures;
}

std::optional<QImage> SavedSignature::image() const {
    QByteArray data = pngData;
    QBuffer buffer(&data);
    QImageReader reader(&buffer, "png");
    reader.setAutoDetectImageFormat(false);
    const QSize size = reader.size();
    QImage image;
    if (size.width() > largestSide || size.height() > largestSide || !reader.read(&image))
        return std::nullopt;
    return image;
}

SignatureStore::SignatureStore(UserDefaults* defaults, QObject* parent) : QObject(parent), m_defaults(defaults) {
    if (m_defaults)
        m_signatures = decodedSignatures(m_defaults->dataForKey(storeKey).value_or(QByteArray()));
    if (!m_signatures.empty())
        m_activeID = m_signatures.front().id;
}

SignatureStore::~SignatureStore() = default;

void SignatureStore::setActiveID(std::optional<QUuid> id) {
    if (m_activeID == id)
        return;
    m_activeID = id;
    Q_EMIT activeIDChanged();
}

std::optional<QImage> SignatureStore::activeImage() const {
    const auto active = std::find_if(m_signatures.begin(), m_signatures.end(),
                                     [this](const SavedSignature& signature) { return signature.id == m_activeID; });
    return active == m_signatures.end() ? std::nullopt : active->image();
}

void SignatureStore::add(const QImage& image) {
    const std::optional<QByteArray> png = ImageOperations::pngData(image);
    if (!png)
        return;
    const QUuid id = QUuid::createUuid();
    m_signatures.push_back({id, *png});
    m_activeID = id;
    persist();
    Q_EMIT signaturesChanged();
    Q_EMIT activeIDChanged();
}

void SignatureStore::remove(QUuid id) {
    std::erase_if(m_signatures, [id](const SavedSignature& signature) { return signature.id == id; });
    const bool wasActive = m_activeID == id;
    if (wasActive)
        m_activeID = m_signatures.empty() ? std::nullopt : std::optional(m_signatures.front().id);
    persist();
    Q_EMIT signaturesChanged();
    if (wasActive)
        Q_EMIT activeIDChanged();
}

void SignatureStore::persist() {
    if (!m_defaults)
        return;
    QJsonArray list;
    for (const SavedSignature& signature : m_signatures) {
        list.append(
            QJsonObject{{idKey, textOf(signature.id)}, {pngKey, QString::fromLatin1(signature.pngData.toBase64())}});
    }
    m_defaults->setData(storeKey, QJsonDocument(list).toJson(QJsonDocument::Compact));
}
