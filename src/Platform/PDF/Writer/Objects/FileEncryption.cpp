#include "FileEncryption.h"

#include "ObjectSyntax.h"

#include <qpdf/QPDF.hh>

#include <openssl/evp.h>
#include <openssl/rand.h>

#include <memory>
#include <stdexcept>

namespace {

constexpr int version = 5;
constexpr int revision = 6;
constexpr int keySize = 32; // bytes
constexpr int blockSize = 16;
constexpr int allRights = -4; // but for the two lowest bits, which say nothing

struct ContextRelease {
    void operator()(EVP_CIPHER_CTX* context) const { EVP_CIPHER_CTX_free(context); }
};

void require(int isDone) {
    if (isDone != 1)
        throw std::runtime_error("encrypting failed");
}

unsigned char* bytesOf(QByteArray& bytes) {
    return reinterpret_cast<unsigned char*>(bytes.data());
}

const unsigned char* bytesOf(const QByteArray& bytes) {
    return reinterpret_cast<const unsigned char*>(bytes.constData());
}

} // namespace

FileEncryption::FileEncryption(const std::string& userPassword, const std::string& ownerPassword) {
    std::string owner;
    std::string user;
    std::string ownerKey;
    std::string userKey;
    std::string rights;
    QPDF::compute_encryption_parameters_V5(userPassword.c_str(), ownerPassword.c_str(), version, revision, keySize,
                                           allRights, true, {}, m_key, owner, user, ownerKey, userKey, rights);
    m_dictionary = QPDFObjectHandle::parse(
        "<< /Filter /Standard /V 5 /R 6 /Length 256 /P -4 /StmF /StdCF /StrF /StdCF "
        "/CF << /StdCF << /Type /CryptFilter /CFM /AESV3 /AuthEvent /DocOpen /Length 32 >> >> >>");
    m_dictionary.replaceKey("/O", QPDFObjectHandle::newString(owner));
    m_dictionary.replaceKey("/U", QPDFObjectHandle::newString(user));
    m_dictionary.replaceKey("/OE", QPDFObjectHandle::newString(ownerKey));
    m_dictionary.replaceKey("/UE", QPDFObjectHandle::newString(userKey));
    m_dictionary.replaceKey("/Perms", QPDFObjectHandle::newString(rights));
}

QPDFObjectHandle FileEncryption::dictionary() const {
    return m_dictionary;
}

/// The initial value, which is random, then the blocks.
QByteArray FileEncryption::encrypted(const QByteArray& bytes) const {
    QByteArray result(blockSize + bytes.size() + blockSize, Qt::Uninitialized);
    require(RAND_bytes(bytesOf(result), blockSize));
    const std::unique_ptr<EVP_CIPHER_CTX, ContextRelease> context(EVP_CIPHER_CTX_new());
    require(EVP_EncryptInit_ex(context.get(), EVP_aes_256_cbc(), nullptr,
                               reinterpret_cast<const unsigned char*>(m_key.data()), bytesOf(result)));
    int size = 0;
    int rest = 0;
    require(EVP_EncryptUpdate(context.get(), bytesOf(result) + blockSize, &size, bytesOf(bytes), int(bytes.size())));
    require(EVP_EncryptFinal_ex(context.get(), bytesOf(result) + blockSize + size, &rest));
    result.resize(blockSize + size + rest);
    return result;
}

std::string FileEncryption::withStringsEncrypted(std::string_view value) const {
    return ObjectSyntax::withStrings(value, [this](const std::string& string) {
        return '<' + encrypted(QByteArray::fromStdString(string)).toHex().toStdString() + '>';
    });
}
