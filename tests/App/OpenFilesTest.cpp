#include "AppTest.h"

#include "UnlockDocumentView.h"

#include <QDir>

class OpenFilesTest : public AppTest {
protected:
    QUrl bytes(const QString& name, const QByteArray& content) {
        QFile written(m_folder.filePath(name));
        EXPECT_TRUE(written.open(QFile::WriteOnly));
        written.write(content);
        return QUrl::fromLocalFile(written.fileName());
    }
};

TEST_F(OpenFilesTest, whatCantBeOpenedGetsASentence) {
    ASSERT_TRUE(QDir(m_folder.path()).mkpath(u"folder.pdf"_qs));
    ASSERT_TRUE(QDir(m_folder.path()).mkpath(u"papers"_qs));
    const struct {
        QUrl url;
        const char* says;
    } cases[] = {
        {QUrl::fromLocalFile(m_folder.filePath(u"missing.pdf"_qs)), "doesn't exist"},
        {QUrl::fromLocalFile(m_folder.filePath(u"folder.pdf"_qs)), "is a folder"},
        {QUrl::fromLocalFile(m_folder.filePath(u"papers"_qs)), "“papers” is a folder."},
        {QUrl::fromLocalFile(m_folder.filePath(u"missing"_qs)), "There is no file “missing”."},
        {bytes(u"empty.pdf"_qs, {}), "“empty.pdf” couldn't be opened."},
        {bytes(u"fake.pdf"_qs, QByteArray("no pdf ").repeated(500)), "“fake.pdf” couldn't be opened."},
        {bytes(u"header.pdf"_qs, "%PDF-1.7\n"), "“header.pdf” couldn't be opened."},
        {bytes(u"notes.docx"_qs, "PK"), "“notes.docx” isn't a PDF. Quillo opens PDF files only so far."},
        {bytes(u"table.xlsx"_qs, "PK"), "“table.xlsx” isn't a PDF."},
        {bytes(u"<b>x.zip"_qs, "PK"), "“<b>x.zip” isn't a PDF."},
        {QUrl(u"https://example.org/a.pdf"_qs), "Only files on this computer"},
        {QUrl(u"https://example.org/a"_qs), "isn't a file on this computer"},
    };
    launch();
    for (const auto& each : cases) {
        m_dialogs->errors.clear();
        open(each.url);
        ASSERT_EQ(m_dialogs->errors.size(), 1) << each.says;
        EXPECT_TRUE(m_dialogs->errors.constFirst().contains(QString::fromUtf8(each.says)))
            << m_dialogs->errors.constFirst().toStdString();
    }
    EXPECT_TRUE(m_app->controller().documents().empty());
    EXPECT_TRUE(landingIsVisible());
}

TEST_F(OpenFilesTest, goodFilesOpenBetweenBadOnesInTheirOrder) {
    launch({file(u"b.pdf"_qs), bytes(u"bad.pdf"_qs, "x"), file(u"locked.PDF"_qs, {.password = "key"}),
            file(u"repaired.pdf"_qs, {.isDamaged = true}), file(u"a.pdf"_qs)});
    EXPECT_EQ(tabNames(), (QStringList{u"b.pdf"_qs, u"locked.PDF"_qs, u"repaired.pdf"_qs, u"a.pdf"_qs}));
    EXPECT_EQ(m_dialogs->errors.size(), 1);
    EXPECT_NE(window()->contentViews().at(1)->findChild<UnlockDocumentView*>(), nullptr);
}

TEST_F(OpenFilesTest, anotherStartHandsItsFilesOver) {
    launch();
    const QUrl first = file(u"100% ä.pdf"_qs);
    const QUrl second = file(u"b#1.pdf"_qs);
    m_app->openFromOtherStart({first.toString(QUrl::FullyEncoded), second.toString(QUrl::FullyEncoded)}, {});
    settle();
    EXPECT_EQ(tabNames(), (QStringList{u"100% ä.pdf"_qs, u"b#1.pdf"_qs}));
    EXPECT_FALSE(landingIsVisible());
}
