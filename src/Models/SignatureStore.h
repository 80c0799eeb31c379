#pragma once

#include <QByteArray>
#include <QImage>
#include <QObject>
#include <QUuid>

#include <optional>
#include <vector>

class UserDefaults;

/// A signature as it is kept: a picture with a transparent background.
struct SavedSignature {
    QUuid id;
    QByteArray pngData;

    /// Decodes the PNG: none when it is damaged or larger than any signature.
    [[nodiscard]] std::optional<QImage> image() const;

    bool operator==(const SavedSignature&) const = default;
};

/// The signatures that the user has drawn. They are read from the user's settings once, when the store is made, and
/// written whole on each change: of two stores the one that writes last decides. What can't be read counts as no
/// signature, without a message. Main thread only.
class SignatureStore : public QObject {
    Q_OBJECT

public:
    /// `defaults` must outlive the store; when it is null, nothing is read and nothing is kept.
    explicit SignatureStore(UserDefaults* defaults, QObject* parent = nullptr);
    ~SignatureStore() override;

    /// In the order in which they were made.
    [[nodiscard]] const std::vector<SavedSignature>& signatures() const { return m_signatures; }

    /// The signature that the signature tool places. At first the first one; the choice is not kept.
    [[nodiscard]] std::optional<QUuid> activeID() const { return m_activeID; }
    void setActiveID(std::optional<QUuid> id);

    /// None when no signature is active or when the active one can't be decoded.
    [[nodiscard]] std::optional<QImage> activeImage() const;

    /// Keeps `image` as the last signature and makes it the active one. A null image is passed over.
    void add(const QImage& image);
    /// The first of the remaining signatures becomes active when the active one goes.
    void remove(QUuid id);

Q_SIGNALS:
    void signaturesChanged();
    void activeIDChanged();

private:
    void persist();

    UserDefaults* const m_defaults;
    std::vector<SavedSignature> m_signatures;
    std::optional<QUuid> m_activeID;
};
