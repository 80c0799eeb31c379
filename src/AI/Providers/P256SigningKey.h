#pragma once

#include <QByteArray>

#include <memory>
#include <optional>

using EVP_PKEY = struct evp_pkey_st;

/// A private key for signatures on the NIST curve P-256. A value that can't be changed. Any thread.
/// Operations throw CryptographyError.
class P256SigningKey {
public:
    /// A new key whose public point is the one of the two with its x coordinate that has the smaller y coordinate, so
    /// that x alone stands for it.
    [[nodiscard]] static P256SigningKey makeCompactRepresentable();

    /// None unless these are 32 bytes and, read as a big-endian number, a private key of the curve.
    [[nodiscard]] static std::optional<P256SigningKey> fromRawRepresentation(const QByteArray& bytes);

    /// 32 bytes, big-endian.
    [[nodiscard]] QByteArray rawRepresentation() const;

    /// The public key as a DER-encoded SubjectPublicKeyInfo (RFC 5480), with the point uncompressed: 91 bytes.
    [[nodiscard]] QByteArray publicKeyDERRepresentation() const;

    /// An ECDSA signature over the SHA-256 digest of `message`: r and s, each 32 bytes, big-endian. No two are equal.
    [[nodiscard]] QByteArray signature(const QByteArray& message) const;

private:
    explicit P256SigningKey(std::shared_ptr<EVP_PKEY> key) : m_key(std::move(key)) {}

    std::shared_ptr<EVP_PKEY> m_key;
};
