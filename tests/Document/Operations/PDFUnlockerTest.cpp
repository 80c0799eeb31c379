#include "PDFUnlocker.h"

#include "EditorTest.h"

namespace {

class PDFUnlockerTest : public EditorTest {};

} // namespace

TEST_F(PDFUnlockerTest, asksUntilAPasswordOpensTheFileOrNoneIsGiven) {
    using Encryption = PdfFixture::Encryption;
    const QString hard = QStringLiteral("naïve € pass"); // needs the Unicode rules of the newest protection
    const QString user = QStringLiteral("user");
    const QString wrong = QStringLiteral("User");
    const struct {
        QString user;
        QStringList tried;
        bool opens = true;
        std::optional<Encryption> encryption = Encryption::aes256;
    } cases[] = {
        {user, {wrong, QString(), user}},
        {user, {QStringLiteral("owner")}},
        {user, {wrong, user}, true, Encryption::aes128},
        {user, {wrong, QStringLiteral("owner")}, true, Encryption::rc4},
        {hard, {QStringLiteral("naive"), hard}},
        {user, {wrong, wrong}, false},
        {QString(), {}}, // protected against changes only: the empty password opens it
        {QString(), {}, true, std::nullopt},
    };
    PdfFixture fixture;
    fixture.addPage({QStringLiteral("Secret text")});
    for (const auto& each : cases) {
        open(each.encryption ? fixture.encrypted(each.user.toUtf8(), "owner", *each.encryption) : fixture.bytes());
        EXPECT_EQ(pdf().pageCount() == 0, !each.tried.isEmpty());
        QStringList left = each.tried;
        const auto ask = [&left] { return left.isEmpty() ? std::nullopt : std::optional(left.takeFirst()); };
        EXPECT_EQ(PDFUnlocker::promptAndUnlock(pdf(), ask), each.opens);
        EXPECT_TRUE(left.isEmpty());
        EXPECT_EQ(pdf().isLocked(), !each.opens);
        EXPECT_EQ(texts(pdf()), each.opens ? QStringLiteral("Secret text") : QString());
    }
}
