#include "CopyProtection.h"

#include "EditorTest.h"
#include "FileStamp.h"
#include "FrozenCopies.h"
#include "PDFError.h"
#include "PageOperations.h"

class CopyProtectionTest : public FolderTest {
protected:
    /// With everything that a copy is to keep.
    void SetUp() override {
        for (const QString& word : {QStringLiteral("First"), QStringLiteral("Second")})
            m_fixture.addPage({word});
        m_fixture.setOutline({{QStringLiteral("Chapter"), 1}});
        m_fixture.addLink(0, {72, 600, 100, 20}, 1);
        m_fixture.addTextField(1, QStringLiteral("name"), {72, 500, 200, 24}, QStringLiteral("Ada"));
        m_fixture.setPageLabels("0 << /S /r >>");
        m_fixture.attach(QStringLiteral("note.txt"), "hidden words");
        m_fixture.setInfo("/Title", QStringLiteral("A title"));
        m_fixture.setRootKey("/Lang", "(en\\(GB)"); // a string outside of streams
        m_fixture.setMetadata("<x>packet</x>");
    }
    /// The bytes of the copy.
    [[nodiscard]] QByteArray written(const PDFDocument& document, const QString& password) const {
        FrozenCopies copies;
        copies.add(document, path("copy.pdf"), password);
        EXPECT_TRUE(copies.write([] { return true; }));
        return contentOf("copy.pdf");
    }
    static bool opens(const QByteArray& file, const char* command, const QString& password) {
        QStringList arguments = QString::fromLatin1(command).split(u' ');
        const QString program = arguments.takeFirst();
        arguments.replaceInStrings(QStringLiteral("PASSWORD"), password);
        return PdfPrograms::run(program, arguments, file).exitCode == 0;
    }

    PdfFixture m_fixture;
};

TEST_F(CopyProtectionTest, copiesOpenByTheirPasswordInOtherProgramsAndNotWithout) {
    const auto document = PDFDocument::fromData(m_fixture.bytes(PdfFixture::Style::objectStreams));
    const auto classic = PDFDocument::fromData(m_fixture.bytes());
    const std::pair<QString, QString> cases[] = {
        {QStringLiteral("secret"), QStringLiteral("secret")},
        {QStringLiteral("Pa\u0308ss\u00A0\uFB01"), QStringLiteral("P\u00E4ss fi")},
        {QStringLiteral("🔑 סיסמה"), QStringLiteral("🔑 סיסמה")},
        {QString(127, u'x'), QString(127, u'x')}};
    for (const auto& [typed, prepared] : cases) {
        SCOPED_TRACE(typed.toStdString());
        ASSERT_EQ(CopyProtection::refusal(typed), QString());
        const QByteArray copy = written(&typed == &cases[0].first ? *classic : *document, typed);
        EXPECT_TRUE(CopyProtection::isProtected(copy, typed, 2));
        EXPECT_FALSE(CopyProtection::isProtected(copy, u'y' + typed, 2));
        for (const char* command :
             {"qpdf --check --password=PASSWORD FILE", "mutool draw -p PASSWORD -Fpam -o /dev/null FILE"}) {
            EXPECT_TRUE(opens(copy, command, prepared)) << command;
            EXPECT_FALSE(opens(copy, command, QStringLiteral("wrong"))) << command;
        }
        const QByteArray seen = PdfFixture::withStreamsInflated(copy);
        for (const char* secret : {"hidden words", "packet", "A title", "note.txt", "Chapter", "(First)", "(en\\(GB)"})
            EXPECT_FALSE(seen.contains(secret)) << secret;
        const QByteArray opened = PdfPrograms::unpacked(copy, prepared);
        EXPECT_TRUE(opened.contains("hidden words") && opened.contains("(en\\(GB)") && opened.contains("packet"));
        EXPECT_EQ(PdfPrograms::complaints(copy, prepared), "");
    }
    EXPECT_FALSE(document->isEncrypted());
}

TEST_F(CopyProtectionTest, passwordsThatNoFileCanHaveAreRefusedAndReplaceNothing) {
    const auto document = PDFDocument::fromData(m_fixture.bytes());
    ASSERT_FALSE(written(*document, {}).isEmpty());
    const std::optional<FileStamp> before = FileStamp::of(path("copy.pdf"));
    for (const QString& bad :
         {QString(128, u'x'), QString(64, u'ä'), QStringLiteral("\u00AD\u200D"), QStringLiteral("a") + QChar(0)}) {
        EXPECT_FALSE(CopyProtection::refusal(bad).isEmpty());
        FrozenCopies copies;
        copies.add(*document, path("copy.pdf"), bad);
        EXPECT_THROW(copies.write([] { return true; }), PDFError);
    }
    EXPECT_TRUE(CopyProtection::refusal(QString(128, u'x')).contains(QStringLiteral("127 bytes")));
    EXPECT_EQ(FileStamp::of(path("copy.pdf")), before);
}

TEST_F(CopyProtectionTest, unlockedCopiesKeepAllButTheProtection) {
    using Encryption = PdfFixture::Encryption;
    for (const auto encryption : {Encryption::rc4, Encryption::aes128, Encryption::aes256}) {
        const auto document = PDFDocument::fromData(m_fixture.encrypted("secret", "owner", encryption));
        ASSERT_TRUE(document->unlock(QStringLiteral("secret")));
        const QByteArray copy = written(*PageOperations::mergeFiles({document}), {});
        EXPECT_EQ(PdfPrograms::complaints(copy), "");
        const auto read = PDFDocument::fromData(copy);
        EXPECT_FALSE(read->isEncrypted());
        EXPECT_EQ(read->label(1), QStringLiteral("ii"));
        const QByteArray text = PdfPrograms::unpacked(copy);
        for (const char* kept : {"hidden words", "packet", "(Ada)", "/Dest", "/AcroForm", "(A title)", "(Chapter)"})
            EXPECT_TRUE(text.contains(kept)) << kept;
    }
}
