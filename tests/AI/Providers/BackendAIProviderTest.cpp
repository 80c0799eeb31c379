#include "BackendAIProvider.h"
#include "DeviceIdentity.h"
#include "LoopbackServer.h"
#include "NoBuiltInServiceError.h"
#include "OpenSSLProgram.h"
#include "P256SigningKey.h"
#include "RestrictedRuns.h"
#include "TaskOutcome.h"
#include "URLSession.h"
#include "URLSessionError.h"

#include <QCryptographicHash>
#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QNetworkProxy>
#include <QScopeGuard>
#include <QTemporaryDir>

#include <algorithm>

#include <sys/stat.h>

#include <gtest/gtest.h>

namespace {

const QByteArray answer = R"({"choices":[{"message":{"content":"Hi"}}]})";

bool write(const QString& path, const QByteArray& bytes) {
    QFile file(path);
    return file.open(QIODevice::WriteOnly) && file.write(bytes) == bytes.size();
}

QByteArray read(const QString& path) {
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

mode_t permissionsOf(const QString& path) {
    struct stat status {};
    return stat(QFile::encodeName(path).constData(), &status) == 0 ? status.st_mode & 07777 : 0;
}

/// A signature of r and s as the DER structure that other programs read.
QByteArray derSignature(const QByteArray& raw) {
    QByteArray numbers;
    for (QByteArray number : {raw.left(32), raw.mid(32)}) {
        while (number.size() > 1 && number[0] == '\0')
            number.remove(0, 1);
        if ((number[0] & 0x80) != 0)
            number.prepend('\0');
        numbers += '\x02' + QByteArray(1, static_cast<char>(number.size())) + number;
    }
    return '\x30' + QByteArray(1, static_cast<char>(numbers.size())) + numbers;
}

/// Whether openssl finds the signature of the request to be that of its key, time and body.
bool isSigned(const LoopbackServer::Request& request) {
    const QByteArray signature = QByteArray::fromBase64(request.header("X-Device-Signature"));
    if (signature.size() != 64)
        return false;
    const QByteArray digest = QCryptographicHash::hash(request.body, QCryptographicHash::Sha256).toHex();
    const QTemporaryDir folder;
    return write(folder.filePath(QStringLiteral("key")),
                 QByteArray::fromBase64(request.header("X-Device-Public-Key"))) &&
           write(folder.filePath(QStringLiteral("signature")), derSignature(signature)) &&
           write(folder.filePath(QStringLiteral("message")), request.header("X-Device-Timestamp") + '.' + digest) &&
           runOpenSSL(folder.path(), "dgst -sha256 -verify key -keyform DER -signature signature message");
}

} // namespace

class BackendAIProviderTest : public testing::Test {
protected:
    void SetUp() override { QDir(QFileInfo(m_keyFile).path()).removeRecursively(); }

    QCoro::Task<AIAgentTurn> send(AIModelPreference preference = AIModelPreference::balanced) {
        std::vector<AIMessage> history{AIMessage::userText(QStringLiteral("Grüße"))};
        m_server.enqueue(LoopbackServer::json(200, answer));
        return m_provider.send(std::move(history), std::vector<AssistantTool>(), {}, preference);
    }

    const LoopbackServer::Request& ask() {
        const auto outcome = outcomeOf(send());
        EXPECT_TRUE(outcome.value) << outcome.sentence;
        return m_server.requests().back();
    }

    const QString m_keyFile = DeviceIdentity::keyFilePath();
    LoopbackServer m_server;
    BackendAIProvider m_provider{m_server.url(QStringLiteral("/api/v1/chat/completions")), URLSession::create()};
};

TEST_F(BackendAIProviderTest, SendsSignedBytes) {
    const qint64 before = QDateTime::currentMSecsSinceEpoch();
    for (const AIModelPreferenceInfo& each : allAIModelPreferences()) {
        const auto outcome = outcomeOf(send(each.preference));
        ASSERT_TRUE(outcome.value) << outcome.sentence;
        EXPECT_EQ(outcome.value->text, QStringLiteral("Hi"));

        const auto& request = m_server.requests().back();
        EXPECT_EQ(request.requestLine().toStdString(), "POST /api/v1/chat/completions HTTP/1.1");
        EXPECT_EQ(request.header("Content-Type").toStdString(), "application/json");
        EXPECT_TRUE(request.header("Authorization").isNull());
        EXPECT_EQ(request.body.toStdString(), R"({"messages":[{"content":"","role":"system"},)"
                                              R"({"content":"Grüße","role":"user"}],"preference":")" +
                                                  each.rawValue.toStdString() + R"(","tools":[]})");
        EXPECT_GE(request.header("X-Device-Timestamp").toLongLong(), before);
        EXPECT_LE(request.header("X-Device-Timestamp").toLongLong(), QDateTime::currentMSecsSinceEpoch());
        EXPECT_TRUE(isSigned(request));
    }
    const auto& requests = m_server.requests();
    EXPECT_EQ(requests[0].header("X-Device-Public-Key"), requests[2].header("X-Device-Public-Key"));
    EXPECT_NE(requests[0].header("X-Device-Signature"), requests[2].header("X-Device-Signature"));
    EXPECT_EQ(BackendAIProvider::defaultEndpoint().path(), QStringLiteral("/api/v1/chat/completions"));
}

TEST_F(BackendAIProviderTest, KeepsItsKeyToTheUser) {
    const mode_t mask = umask(0);
    const QByteArray publicKey = ask().header("X-Device-Public-Key");
    EXPECT_EQ(permissionsOf(m_keyFile), 0600u);
    EXPECT_EQ(permissionsOf(QFileInfo(m_keyFile).path()), 0700u);

    // What is no private key gives way to one: a wrong length, zero, and the order of the curve or more.
    for (const QByteArray& damaged :
         {QByteArray(), QByteArray(31, '\1'), QByteArray(33, '\1'), QByteArray(32, '\0'), QByteArray(32, '\xff')}) {
        ASSERT_TRUE(write(m_keyFile, damaged));
        ASSERT_TRUE(QFile::setPermissions(m_keyFile, QFile::ReadOwner | QFile::WriteOwner | QFile::ReadOther));
        const auto& request = ask();
        EXPECT_NE(request.header("X-Device-Public-Key"), publicKey);
        EXPECT_TRUE(isSigned(request));
        EXPECT_EQ(read(m_keyFile).size(), 32);
        EXPECT_EQ(permissionsOf(m_keyFile), 0600u);
    }
    umask(mask);

    // So does one that its own user can't read.
    ASSERT_EQ(chmod(QFile::encodeName(m_keyFile).constData(), 0), 0);
    const QByteArray unreadable = read(m_keyFile); // as root may
    RestrictedRuns::withoutPrivileges([this] {
        EXPECT_EQ(read(m_keyFile), QByteArray());
        EXPECT_NO_THROW(static_cast<void>(DeviceIdentity::publicKeyBase64()));
    });
    EXPECT_EQ(permissionsOf(m_keyFile), 0600u);
    EXPECT_EQ(read(m_keyFile).size(), 32);
    EXPECT_NE(read(m_keyFile), unreadable);
}

TEST_F(BackendAIProviderTest, SendsNothingWithoutAKey) {
    ASSERT_TRUE(QDir().mkpath(m_keyFile)); // a folder of the file's name
    EXPECT_EQ(outcomeOf(send()).sentence, "Couldn't save the device signing key (There is a folder of this name.).");
    EXPECT_TRUE(m_server.requests().empty());
}

TEST_F(BackendAIProviderTest, AsksNobodyWhereThereIsNoService) {
    // A proxy would hear of any request.
    const QUrl proxy = m_server.url({});
    QNetworkProxy::setApplicationProxy({QNetworkProxy::HttpProxy, proxy.host(), static_cast<quint16>(proxy.port())});
    const auto reset = qScopeGuard([] { QNetworkProxy::setApplicationProxy(QNetworkProxy::NoProxy); });
    for (const char* address :
         {"https://assistant.quillo.invalid/api", "https://INVALID:8443/", "https://a.Invalid./", "https:///api"}) {
        const QUrl endpoint{QLatin1String(address)};
        EXPECT_FALSE(BackendAIProvider::isConfigured(endpoint)) << address;
        BackendAIProvider provider(endpoint);
        EXPECT_EQ(outcomeOf(provider.send({}, {}, {}, AIModelPreference::fast)).sentence,
                  NoBuiltInServiceError().what())
            << address;
    }
    EXPECT_TRUE(m_server.requests().empty());
    EXPECT_FALSE(QFile::exists(m_keyFile)) << "nobody needs a key";
    EXPECT_TRUE(BackendAIProvider::isConfigured(QUrl(QStringLiteral("https://invalid.example.org/"))));
}

TEST_F(BackendAIProviderTest, CallsTheServiceByItsNameWhenItFails) {
    BackendAIProvider provider(std::make_unique<LoopbackServer>()->url({})); // which is gone by now
    EXPECT_EQ(outcomeOf(provider.send({}, {}, {}, AIModelPreference::fast)).sentence,
              "Quillo's built-in AI service refused the connection. Ask again later.");
    for (int error = QNetworkReply::ConnectionRefusedError; error <= QNetworkReply::UnknownServerError; ++error) {
        const URLSessionError failure = URLSessionError::forNetworkError(
            static_cast<QNetworkReply::NetworkError>(error), {true, QStringLiteral("h.test")});
        const QString sentence = QString::fromUtf8(failure.what());
        EXPECT_TRUE(sentence.startsWith(QStringLiteral("Quillo's built-in AI service "))) << error;
        for (const char* word : {"h.test", "API", "key", "Settings", "%"})
            EXPECT_FALSE(sentence.contains(QLatin1String(word))) << sentence.toStdString();
    }
}

TEST(P256SigningKey, HasThePublicKeyOfItsPrivateOneAndIsMadeWithTheSmallerY) {
    // The example key of RFC 6979, A.2.5.
    const QByteArray privateKey =
        QByteArray::fromHex("C9AFA9D845BA75166B5C215767B1D6934E50C3DB36E89B127B8A622B120F6721");
    const auto key = P256SigningKey::fromRawRepresentation(privateKey);
    ASSERT_TRUE(key);
    EXPECT_EQ(key->rawRepresentation(), privateKey);
    EXPECT_EQ(key->publicKeyDERRepresentation().toHex().toStdString(),
              "3059301306072a8648ce3d020106082a8648ce3d030107034200"
              "0460fed4ba255a9d31c961eb74c6356d68c049b8923b61fa6ce669622e60f29fb6"
              "7903fe1008b8bc99a41ae9e95628bc64f2f1b20c2d7e9f5177a3c294d4462299");
    for (int count = 0; count < 20; ++count) {
        const QByteArray publicKey = P256SigningKey::makeCompactRepresentable().publicKeyDERRepresentation();
        ASSERT_EQ(publicKey.size(), 91);
        EXPECT_EQ(publicKey[publicKey.size() - 32] & 0x80, 0);
    }
}
