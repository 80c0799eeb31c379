#include "PDFUnlocker.h"

#include "PDFDocument.h"
#include "PDFPage.h"
#include "PdfFixtures.h"
#include "PdfPrograms.h"

#include <gtest/gtest.h>

static QByteArray plainFile() {
    PdfFixture fixture;
    fixture.addPage({u"Secret text"_qs});
    return fixture.bytes();
}

/// The file as another program protects it, with the key length in bits.
static QByteArray protectedFile(const QString& userPassword, const QString& ownerPassword, int keyLength) {
    QStringList arguments{u"--encrypt"_qs, userPassword, ownerPassword, QString::number(keyLength)};
    if (keyLength == 128)
        arguments << u"--use-aes=y"_qs;
    if (keyLength < 256)
        arguments.prepend(u"--allow-weak-crypto"_qs);
    arguments << u"--"_qs << u"FILE"_qs << u"-"_qs;
    return PdfPrograms::run(u"qpdf"_qs, arguments, plainFile()).output;
}

TEST(PDFUnlocker, asksUntilAPasswordOpensTheFile) {
    const QString hard = u"naïve € pass"_qs; // needs the Unicode rules of the newest protection
    const struct {
        QString user;
        QString owner;
        int keyLength;
        QStringList tried; // the last one opens it
    } cases[] = {
        {u"user"_qs, u"owner"_qs, 256, {u"wrong"_qs, QString(), u"User"_qs, u"user"_qs}},
        {u"user"_qs, u"owner"_qs, 256, {u"owner"_qs}},
        {u"user"_qs, u"owner"_qs, 128, {u"no"_qs, u"user"_qs}},
        {u"user"_qs, u"owner"_qs, 40, {u"no"_qs, u"owner"_qs}},
        {hard, u"owner"_qs, 256, {u"naive"_qs, hard}},
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
        EXPECT_EQ(document->page(0)->string().trimmed(), u"Secret text"_qs);
    }
}

TEST(PDFUnlocker, givingUpLeavesTheDocumentLocked) {
    const auto document = PDFDocument::fromData(protectedFile(u"user"_qs, u"owner"_qs, 256));
    int asked = 0;
    EXPECT_FALSE(PDFUnlocker::promptAndUnlock(
        *document, [&asked] { return ++asked < 3 ? std::optional(u"wrong"_qs) : std::nullopt; }));
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
    EXPECT_TRUE(
        PDFUnlocker::promptAndUnlock(*PDFDocument::fromData(protectedFile(QString(), u"owner"_qs, 256)), refuse));
}
