#include "PDFUnlocker.h"

#include "PDFDocument.h"
#include "PDFPage.h"
#include "PdfFixtures.h"
#include "PdfPrograms.h"

#include <gtest/gtest.h>

static QByteArray plainFile() {
    PdfFixture fixture;
    fixture.addPage({QStringLiteral("Secret text")});
    return fixture.bytes();
}

/// The file as another program protects it, with the key length in bits.
static QByteArray protectedFile(const QString& userPassword, const QString& ownerPassword, int keyLength) {
    QStringList arguments{QStringLiteral("--encrypt"), userPassword, ownerPassword, QString::number(keyLength)};
    if (keyLength == 128)
        arguments << QStringLiteral("--use-aes=y");
    if (keyLength < 256)
        arguments.prepend(QStringLiteral("--allow-weak-crypto"));
    arguments << QStringLiteral("--") << QStringLiteral("FILE") << QStringLiteral("-");
    return PdfPrograms::run(QStringLiteral("qpdf"), arguments, plainFile()).output;
}

TEST(PDFUnlocker, asksUntilAPasswordOpensTheFile) {
    const QString hard = QStringLiteral("naïve € pass"); // needs the Unicode rules of the newest protection
    const struct {
        QString user;
        QString owner;
        int keyLength;
        QStringList tried; // the last one opens it
    } cases[] = {
        {QStringLiteral("user"),
         QStringLiteral("owner"),
         256,
         {QStringLiteral("wrong"), QString(), QStringLiteral("User"), QStringLiteral("user")}},
        {QStringLiteral("user"), QStringLiteral("owner"), 256, {QStringLiteral("owner")}},
        {QStringLiteral("user"), QStringLiteral("owner"), 128, {QStringLiteral("no"), QStringLiteral("user")}},
        {QStringLiteral("user"), QStringLiteral("owner"), 40, {QStringLiteral("no"), QStringLiteral("owner")}},
        {hard, QStringLiteral("owner"), 256, {QStringLiteral("naive"), hard}},
    };
    for (const auto& each : cases) {
        const auto document = PDFDocument::fromData(protectedFile(each.user, each.owner, each.keyLength));
        ASSERT_TRUE(document->isLocked());
        EXPECT_EQ(document->pageCount(), 0);
        int asked = 0;
        EXPECT_TRUE(PDFUnlocker::promptAndUnlock(
            *document, [&] { return asked < each.tried.size() ? std::optional(each.tried[asked++]) : std::nullopt; }));
        EXPECT_EQ(asked, each.tried.size());
        EXPECT_FALSE(document->isLocked());
        ASSERT_EQ(document->pageCount(), 1);
        EXPECT_EQ(document->page(0)->string().trimmed(), QStringLiteral("Secret text"));
    }
}

TEST(PDFUnlocker, givingUpLeavesTheDocumentLocked) {
    const auto document = PDFDocument::fromData(protectedFile(QStringLiteral("user"), QStringLiteral("owner"), 256));
    int asked = 0;
    EXPECT_FALSE(PDFUnlocker::promptAndUnlock(
        *document, [&asked] { return ++asked < 3 ? std::optional(QStringLiteral("wrong")) : std::nullopt; }));
    EXPECT_EQ(asked, 3);
    EXPECT_TRUE(document->isLocked());
}

TEST(PDFUnlocker, aDocumentThatNeedsNoPasswordRaisesNoQuestion) {
    const auto refuse = [] {
        ADD_FAILURE() << "asked";
        return std::optional<QString>();
    };
    EXPECT_TRUE(PDFUnlocker::promptAndUnlock(*PDFDocument::fromData(plainFile()), refuse));
    // Protected against changes only: the empty password opens it.
    EXPECT_TRUE(PDFUnlocker::promptAndUnlock(
        *PDFDocument::fromData(protectedFile(QString(), QStringLiteral("owner"), 256)), refuse));
}
