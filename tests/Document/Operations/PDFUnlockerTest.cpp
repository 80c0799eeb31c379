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

TEST(PDFUnlocker, asksUntilAPasswordOpensTheFileOrNoneIsGiven) {
    const QString user = QStringLiteral("user");
    const QString owner = QStringLiteral("owner");
    const QString hard = QStringLiteral("naïve € pass"); // needs the Unicode rules of the newest protection
    const struct {
        QString user;
        int keyLength;
        QStringList tried;
        bool opens = true;
    } cases[] = {
        {user, 256, {QStringLiteral("wrong"), QString(), QStringLiteral("User"), user}},
        {user, 256, {owner}},
        {user, 128, {QStringLiteral("no"), user}},
        {user, 40, {QStringLiteral("no"), owner}},
        {hard, 256, {QStringLiteral("naive"), hard}},
        {user, 256, {QStringLiteral("wrong"), QStringLiteral("wrong")}, false},
        {QString(), 256, {}}, // protected against changes only: the empty password opens it
        {QString(), 0, {}},
    };
    for (const auto& each : cases) {
        const auto document =
            PDFDocument::fromData(each.keyLength > 0 ? protectedFile(each.user, owner, each.keyLength) : plainFile());
        EXPECT_EQ(document->pageCount() == 0, !each.tried.isEmpty());
        int asked = 0;
        EXPECT_EQ(PDFUnlocker::promptAndUnlock(
                      *document,
                      [&] { return asked < each.tried.size() ? std::optional(each.tried[asked++]) : std::nullopt; }),
                  each.opens);
        EXPECT_EQ(asked, each.tried.size());
        EXPECT_EQ(document->isLocked(), !each.opens);
        EXPECT_EQ(document->pageCount() > 0 ? document->page(0)->string().trimmed() : QString(),
                  each.opens ? QStringLiteral("Secret text") : QString());
    }
}
