#include "P256SigningKey.h"

#include "CryptographyError.h"

#include <array>

#include <openssl/bn.h>
#include <openssl/core_names.h>
#include <openssl/ec.h>
#include <openssl/err.h>
#include <openssl/evp.h>
#include <openssl/param_build.h>
#include <openssl/x509.h>

namespace {

constexpr int numberSize = 32;                // bytes of a number of the curve
constexpr int pointSize = 1 + 2 * numberSize; // uncompressed: a tag, x, y

template <auto release>
struct Release {
    template <typename T>
    void operator()(T* object) const {
        release(object);
    }
};
using Number = std::unique_ptr<BIGNUM, Release<BN_clear_free>>;
using NumberContext = std::unique_ptr<BN_CTX, Release<BN_CTX_free>>;
using Group = std::unique_ptr<EC_GROUP, Release<EC_GROUP_free>>;
using Point = std::unique_ptr<EC_POINT, Release<EC_POINT_free>>;
using ParameterBuilder = std::unique_ptr<OSSL_PARAM_BLD, Release<OSSL_PARAM_BLD_free>>;
using Parameters = std::unique_ptr<OSSL_PARAM, Release<OSSL_PARAM_free>>;
using KeyContext = std::unique_ptr<EVP_PKEY_CTX, Release<EVP_PKEY_CTX_free>>;
using DigestContext = std::unique_ptr<EVP_MD_CTX, Release<EVP_MD_CTX_free>>;
using Signature = std::unique_ptr<ECDSA_SIG, Release<ECDSA_SIG_free>>;

void check(bool isDone) {
    if (isDone)
        return;
    const char* const reason = ERR_reason_error_string(ERR_get_error());
    ERR_clear_error();
    throw CryptographyError(QStringLiteral("The device signing key couldn't be used (%1).")
                                .arg(QLatin1String(reason != nullptr ? reason : "unknown reason")));
}

QByteArray bytesOf(const BIGNUM* number) {
    QByteArray bytes(numberSize, '\0');
    check(BN_bn2binpad(number, reinterpret_cast<unsigned char*>(bytes.data()), numberSize) == numberSize);
    return bytes;
}

Group makeGroup() {
    Group group(EC_GROUP_new_by_curve_name(NID_X9_62_prime256v1));
    check(group != nullptr);
    return group;
}

/// The point of the public key that belongs to the private one.
std::array<unsigned char, pointSize> publicPoint(const EC_GROUP* group, const BIGNUM* privateKey) {
    const Point point(EC_POINT_new(group));
    check(point && EC_POINT_mul(group, point.get(), privateKey, nullptr, nullptr, nullptr) == 1);
    std::array<unsigned char, pointSize> bytes{};
    check(EC_POINT_point2oct(group, point.get(), POINT_CONVERSION_UNCOMPRESSED, bytes.data(), bytes.size(), nullptr) ==
          bytes.size());
    return bytes;
}

std::shared_ptr<EVP_PKEY> makeKey(const EC_GROUP* group, const BIGNUM* privateKey) {
    const auto point = publicPoint(group, privateKey);
    const ParameterBuilder builder(OSSL_PARAM_BLD_new());
    check(builder &&
          OSSL_PARAM_BLD_push_utf8_string(builder.get(), OSSL_PKEY_PARAM_GROUP_NAME, SN_X9_62_prime256v1, 0) == 1 &&
          OSSL_PARAM_BLD_push_octet_string(builder.get(), OSSL_PKEY_PARAM_PUB_KEY, point.data(), point.size()) == 1 &&
          OSSL_PARAM_BLD_push_BN_pad(builder.get(), OSSL_PKEY_PARAM_PRIV_KEY, privateKey, numberSize) == 1);
    const Parameters parameters(OSSL_PARAM_BLD_to_param(builder.get()));
    const KeyContext context(EVP_PKEY_CTX_new_from_name(nullptr, "EC", nullptr));
    EVP_PKEY* key = nullptr;
    check(parameters && context && EVP_PKEY_fromdata_init(context.get()) == 1 &&
          EVP_PKEY_fromdata(context.get(), &key, EVP_PKEY_KEYPAIR, parameters.get()) == 1);
    return {key, EVP_PKEY_free};
}

} // namespace

P256SigningKey P256SigningKey::makeCompactRepresentable() {
    const Group group = makeGroup();
    const BIGNUM* const order = EC_GROUP_get0_order(group.get());
    const Number privateKey(BN_secure_new());
    check(privateKey != nullptr);
    do {
        check(BN_priv_rand_range(privateKey.get(), order) == 1);
    } while (BN_is_zero(privateKey.get()));

    // The negated private key has the point with the same x and the other y, which is the field's prime less this one.
    const auto point = publicPoint(group.get(), privateKey.get());
    const Number twiceY(BN_bin2bn(point.data() + 1 + numberSize, numberSize, nullptr));
    check(twiceY && BN_lshift1(twiceY.get(), twiceY.get()) == 1);
    if (BN_cmp(twiceY.get(), EC_GROUP_get0_field(group.get())) > 0)
        check(BN_sub(privateKey.get(), order, privateKey.get()) == 1);
    return P256SigningKey(makeKey(group.get(), privateKey.get()));
}

std::optional<P256SigningKey> P256SigningKey::fromRawRepresentation(const QByteArray& bytes) {
    if (bytes.size() != numberSize)
        return std::nullopt;
    const Group group = makeGroup();
    const Number privateKey(BN_secure_new());
    check(privateKey && BN_bin2bn(reinterpret_cast<const unsigned char*>(bytes.constData()), numberSize,
                                  privateKey.get()) != nullptr);
    if (BN_is_zero(privateKey.get()) || BN_cmp(privateKey.get(), EC_GROUP_get0_order(group.get())) >= 0)
        return std::nullopt;
    return P256SigningKey(makeKey(group.get(), privateKey.get()));
}

QByteArray P256SigningKey::rawRepresentation() const {
    BIGNUM* number = nullptr;
    check(EVP_PKEY_get_bn_param(m_key.get(), OSSL_PKEY_PARAM_PRIV_KEY, &number) == 1);
    return bytesOf(Number(number).get());
}

QByteArray P256SigningKey::publicKeyDERRepresentation() const {
    const int size = i2d_PUBKEY(m_key.get(), nullptr);
    check(size > 0);
    QByteArray bytes(size, '\0');
    auto* end = reinterpret_cast<unsigned char*>(bytes.data());
    check(i2d_PUBKEY(m_key.get(), &end) == size);
    return bytes;
}

QByteArray P256SigningKey::signature(const QByteArray& message) const {
    const DigestContext context(EVP_MD_CTX_new());
    check(context && EVP_DigestSignInit(context.get(), nullptr, EVP_sha256(), nullptr, m_key.get()) == 1);
    const auto* input = reinterpret_cast<const unsigned char*>(message.constData());
    const auto inputSize = static_cast<size_t>(message.size());
    size_t size = 0;
    check(EVP_DigestSign(context.get(), nullptr, &size, input, inputSize) == 1);
    QByteArray der(static_cast<qsizetype>(size), '\0');
    check(EVP_DigestSign(context.get(), reinterpret_cast<unsigned char*>(der.data()), &size, input, inputSize) == 1);

    const auto* start = reinterpret_cast<const unsigned char*>(der.constData());
    const Signature pair(d2i_ECDSA_SIG(nullptr, &start, static_cast<long>(size)));
    check(pair != nullptr);
    return bytesOf(ECDSA_SIG_get0_r(pair.get())) + bytesOf(ECDSA_SIG_get0_s(pair.get()));
}
