#include "SignatureStore.h"

#include "ImageOperations.h"
#include "ToolState.h"
#include "UserDefaults.h"

#include <QBuffer>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QSignalSpy>
#include <QTemporaryDir>

#include <gtest/gtest.h>

static QImage picture(QColor color, QSize size = {30, 20}) {
    QImage image(size, QImage::Format_ARGB32_Premultiplied);
    image.fill(color);
    return image;
}

class SignatureStoreTest : public testing::Test {
protected:
    static const QString key;

    QColor activeColor(const SignatureStore& store) const {
        const auto image = store.activeImage();
        return image ? image->pixelColor(3, 3) : QColor();
    }

    QTemporaryDir m_folder;
    QString m_path = m_folder.filePath(QStringLiteral("settings.ini"));
};

const QString SignatureStoreTest::key = QStringLiteral("quillo.savedSignatures");

TEST_F(SignatureStoreTest, theNewOneIsActiveAtOnceAndTheFirstOneAfterARelaunch) {
    {
        UserDefaults defaults(m_path);
        ToolState state(&defaults);
        SignatureStore& store = *state.signatureStore();
        EXPECT_FALSE(store.activeImage());
        store.add(QImage());
        EXPECT_TRUE(store.signatures().empty());
        QSignalSpy changed(&store, &SignatureStore::signaturesChanged);
        QSignalSpy activeChanged(&store, &SignatureStore::activeIDChanged);
        store.add(picture(Qt::red));
        store.add(picture(Qt::green));
        store.add(picture(Qt::blue));
        EXPECT_EQ(activeColor(store), QColor(Qt::blue));
        store.setActiveID(store.signatures()[1].id);
        EXPECT_EQ(activeColor(store), QColor(Qt::green));
        EXPECT_EQ(changed.count(), 3);
        EXPECT_EQ(activeChanged.count(), 4);
    }
    UserDefaults defaults(m_path);
    SignatureStore store(&defaults);
    ASSERT_EQ(store.signatures().size(), 3U);
    EXPECT_EQ(activeColor(store), QColor(Qt::red));
    EXPECT_EQ(store.activeImage()->size(), QSize(30, 20));

    // The stored form: other programs read it too.
    const QJsonArray list = QJsonDocument::fromJson(defaults.dataForKey(key).value()).array();
    ASSERT_EQ(list.size(), 3);
    const QJsonObject first = list[0].toObject();
    EXPECT_EQ(first.keys(), (QStringList{QStringLiteral("id"), QStringLiteral("pngData")}));
    EXPECT_EQ(first[QStringLiteral("id")].toString(),
              store.signatures()[0].id.toString(QUuid::WithoutBraces).toUpper());
    EXPECT_TRUE(QByteArray::fromBase64(first[QStringLiteral("pngData")].toString().toLatin1()).startsWith("\x89PNG"));
}

TEST_F(SignatureStoreTest, removingTheActiveOneMakesTheFirstOneActive) {
    UserDefaults defaults(m_path);
    SignatureStore store(&defaults);
    for (const QColor& color : {QColor(Qt::red), QColor(Qt::green), QColor(Qt::blue)})
        store.add(picture(color));
    const QUuid blue = *store.activeID();
    store.remove(store.signatures()[1].id);
    EXPECT_EQ(store.activeID(), blue) << "Another one than the active one went.";
    store.remove(blue);
    EXPECT_EQ(activeColor(store), QColor(Qt::red));
    store.remove(QUuid::createUuid());
    EXPECT_EQ(store.signatures().size(), 1U);
    store.remove(store.signatures()[0].id);
    EXPECT_FALSE(store.activeID());
    EXPECT_FALSE(store.activeImage());
    EXPECT_TRUE(SignatureStore(&defaults).signatures().empty());
}

TEST_F(SignatureStoreTest, whatCantBeReadIsAnEmptyList) {
    const QByteArray id = "\"id\":\"0B9C8F54-3F6E-4C61-9E55-0A2F1C0D7B11\"";
    const QByteArray good =
        '{' + id + ",\"pngData\":\"" + ImageOperations::pngData(picture(Qt::red))->toBase64() + "\"}";
    const struct {
        QByteArray json;
        std::size_t count;
    } cases[] = {
        {'[' + good + ']', 1},
        {"", 0},
        {"\x80\xff garbage", 0},
        {"{}", 0},
        {"[1,2]", 0},
        {'[' + good, 0},
        {QByteArray(100'000, '['), 0},
        {'[' + good + ",{" + id + "}]", 0},
        {'[' + good + ",{" + id + ",\"pngData\":7}]", 0},
        {'[' + good + ",{" + id + ",\"pngData\":\"no base64!\"}]", 0},
        {'[' + good + ",{\"id\":5,\"pngData\":\"AAAA\"}]", 0},
        {'[' + good + ",{\"id\":\"{0B9C8F54-3F6E-4C61-9E55-0A2F1C0D7B11}\",\"pngData\":\"AAAA\"}]", 0},
        {'[' + good + ",null]", 0},
    };
    for (const auto& each : cases) {
        UserDefaults defaults(m_folder.filePath(QStringLiteral("case.ini")));
        defaults.setData(key, each.json);
        const SignatureStore store(&defaults);
        EXPECT_EQ(store.signatures().size(), each.count) << each.json.left(300).constData();
    }
    UserDefaults text(m_folder.filePath(QStringLiteral("text.ini")));
    text.setString(key, QString::fromLatin1('[' + good + ']'));
    EXPECT_TRUE(SignatureStore(&text).signatures().empty());
}

TEST_F(SignatureStoreTest, aPictureThatCantBeDecodedGivesNoImage) {
    QByteArray huge = *ImageOperations::pngData(picture(Qt::red));
    huge.replace(16, 8, QByteArray::fromHex("7fffffff7fffffff"));
    QByteArray jpeg;
    QBuffer buffer(&jpeg);
    ASSERT_TRUE(picture(Qt::red).save(&buffer, "JPG"));
    QImage wide(5000, 2, QImage::Format_ARGB32);
    wide.fill(Qt::red);
    for (const QByteArray& data : {QByteArray(), QByteArray("text"), huge, jpeg, *ImageOperations::pngData(wide),
                                   ImageOperations::pngData(picture(Qt::red))->left(40)}) {
        UserDefaults defaults(m_folder.filePath(QStringLiteral("case.ini")));
        const QJsonObject object{{QStringLiteral("id"), QStringLiteral("0b9c8f54-3f6e-4c61-9e55-0a2f1c0d7b11")},
                                 {QStringLiteral("pngData"), QString::fromLatin1(data.toBase64())}};
        defaults.setData(key, QJsonDocument(QJsonArray{object}).toJson());
        SignatureStore store(&defaults);
        ASSERT_EQ(store.signatures().size(), 1U);
        EXPECT_FALSE(store.activeImage()) << data.size();
        store.remove(*store.activeID());
        EXPECT_TRUE(store.signatures().empty());
    }
}

TEST(ImageOperations, trimmingKeepsAMarginWhereThereIsRoom) {
    const struct {
        QRect ink;
        QSize size;
    } cases[] = {
        {{40, 30, 10, 5}, {22, 17}},  // 6 pixels on each side
        {{0, 0, 10, 5}, {16, 11}},    // cut short by the upper left edge
        {{97, 78, 3, 2}, {9, 8}},     // and by the lower right one
        {{0, 0, 100, 80}, {100, 80}}, // nothing to cut
    };
    for (const auto format : {QImage::Format_ARGB32_Premultiplied, QImage::Format_ARGB32, QImage::Format_RGBA8888}) {
        for (const auto& each : cases) {
            QImage image(100, 80, format);
            image.setDevicePixelRatio(2);
            image.fill(Qt::transparent);
            for (int y = each.ink.top(); y <= each.ink.bottom(); ++y) {
                for (int x = each.ink.left(); x <= each.ink.right(); ++x)
                    image.setPixelColor(x, y, QColor(0, 0, 0, 11));
            }
            const auto trimmed = ImageOperations::trimmedToOpaqueContent(image);
            ASSERT_TRUE(trimmed);
            EXPECT_EQ(trimmed->size(), each.size) << format;
            EXPECT_EQ(trimmed->deviceIndependentSize(), QSizeF(each.size));
        }
    }
    QImage faint(20, 20, QImage::Format_ARGB32);
    faint.fill(QColor(0, 0, 0, 10));
    EXPECT_FALSE(ImageOperations::trimmedToOpaqueContent(faint));
    EXPECT_FALSE(ImageOperations::trimmedToOpaqueContent(QImage()));
    const QImage opaque = faint.convertToFormat(QImage::Format_RGB32);
    EXPECT_EQ(ImageOperations::trimmedToOpaqueContent(opaque), opaque);
}
