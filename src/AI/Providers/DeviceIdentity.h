#pragma once

#include <QByteArray>
#include <QString>

/// The key by which the built-in AI service knows this user's Quillo: made on first use, kept for good in a file of its
/// own that only the user can read, and read from there at each use. Any thread.
///
/// A missing file, one that can't be read, and one that holds no key, is replaced by a new key. Operations throw
/// DeviceIdentityError when that can't be saved, and CryptographyError.
namespace DeviceIdentity {

/// `device-identity.key` in the folder of Quillo below the user's folder for data.
[[nodiscard]] QString keyFilePath();

/// The public key, a DER-encoded SubjectPublicKeyInfo, in Base64.
[[nodiscard]] QByteArray publicKeyBase64();

/// Signs a request with this body, sent at this time (milliseconds since 1970-01-01 UTC). What is signed is the time in
/// decimal, a full stop, and the SHA-256 digest of the body in lower-case hexadecimal. The signature is ECDSA with
/// SHA-256, r and s of 32 bytes each, in Base64.
[[nodiscard]] QByteArray sign(const QByteArray& bodyBytes, qint64 timestampMillis);

} // namespace DeviceIdentity
