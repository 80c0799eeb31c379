#include "AppTest.h"

#include "ConverterProcess.h"
#include "RecentPageStore.h"
#include "WindowPresenter.h"

#include <QImage>
#include <QLabel>
#include <QProgressDialog>
#include <QPushButton>
#include <QScopeGuard>

class ImportTest : public AppTest {
protected:
    QUrl picture(const char* name) {
        QImage image(40, 30, QImage::Format_RGB32);
        image.fill(Qt::red);
        EXPECT_TRUE(image.save(path(name)));
        return QUrl::fromLocalFile(path(name));
    }

    /// What tells that a file takes long to open, while it is there.
    static QProgressDialog* slowReading() {
        for (QWidget* window : QApplication::topLevelWidgets()) {
            if (window->isVisible() && window->objectName() == QLatin1String("slowReading"))
                return qobject_cast<QProgressDialog*>(window);
        }
        return nullptr;
    }

    /// What imports have left in the temporary folder.
    static QStringList leftFolders() {
        return QDir::temp().entryList({QStringLiteral("quillo-import-*")}, QDir::Dirs | QDir::NoDotAndDotDot);
    }
};

TEST_F(ImportTest, aPictureOpensAsAnUntitledDocumentThatIsSavedBesideIt) {
    const QUrl url = picture("Mein Bild.v2.png");
    launch({url});
    ASSERT_EQ(tabNames(), "Mein Bild.v2");
    const auto imported = document(0);
    EXPECT_EQ(imported->pdfDocument()->pageCount(), 1);
    EXPECT_TRUE(imported->fileURL().isEmpty() && imported->importedFrom() == url && !imported->isDocumentEdited());
    EXPECT_EQ(m_app->controller().recentDocumentURLs().value(0), url);
    EXPECT_EQ(RecentPageStore::pageIndex(m_app->defaults(), url), 0);
    open(url);
    EXPECT_EQ(tabs()->count(), 1) << "it comes forward";
    m_dialogs->saveLocation = path("Mein Bild.v2.pdf");
    run("save");
    EXPECT_EQ(m_dialogs->takeCalls(), "choose " + m_dialogs->saveLocation->toStdString());
    EXPECT_EQ(imported->fileURL(), QUrl::fromLocalFile(*m_dialogs->saveLocation));
    EXPECT_TRUE(imported->importedFrom().isEmpty());
    EXPECT_EQ(savedPageCount("Mein Bild.v2.pdf"), 1);
    EXPECT_FALSE(QImage(url.toLocalFile()).isNull()) << "the picture is as it was";
}

TEST_F(ImportTest, filesOfAllKindsBecomePagesAndOneThatFailsBothersNone) {
    ASSERT_TRUE(QDir(m_folder.path()).mkdir(QStringLiteral("memo.rtfd")));
    write("memo.rtfd/TXT.rtf", "{\\rtf1\\ansi Dear reader}");
    launch();
    m_app->delegate().openFiles({write("plain.txt", "Dear reader"), write("source.MD", "# Dear reader"),
                                 write("bad.gif", "GIF89a no more"), write("page.html", "<p>Dear <b>reader</b></p>"),
                                 write("letter.rtf", "{\\rtf1\\ansi Dear reader}"),
                                 QUrl::fromLocalFile(path("memo.rtfd"))});
    settle();
    EXPECT_FALSE(landingIsVisible());
    EXPECT_EQ(m_dialogs->takeCalls(), "Couldn't Open “bad.gif” This file couldn't be converted to a PDF.");
    ASSERT_EQ(m_app->controller().documents().size(), 5U);
    for (std::size_t i = 0; i < 5; ++i)
        EXPECT_TRUE(document(i)->pdfDocument()->string().contains(QStringLiteral("Dear reader"))) << i;

    // A file takes the place of an empty tab, unless it fails.
    for (const QUrl& url : {QUrl::fromLocalFile(path("none.png")), picture("b.bmp")}) {
        m_app->controller().newDocument();
        window()->currentContentView()->openInPlace(url);
        settle();
    }
    EXPECT_TRUE(tabNames().ends_with(", Untitled, b"));
}

TEST_F(ImportTest, aSlowFileIsShownUntilItIsThereOrGivenUp) {
    const auto restore = qScopeGuard([] { ConverterProcess::setCommand({}); });
    ConverterProcess::setCommand({"/bin/sh", "-c", "sleep 1000"});
    m_app->launch({picture("<b>a.png")});
    ASSERT_TRUE(QTest::qWaitFor([] { return slowReading() != nullptr; }, 60'000));
    EXPECT_FALSE(landingIsVisible() || slowReading()->isModal());
    EXPECT_EQ(slowReading()->findChild<QLabel*>()->text(), QStringLiteral("Opening “<b>a.png”…"));
    slowReading()->findChild<QPushButton*>()->click();
    settle();
    EXPECT_TRUE(m_app->controller().documents().empty());
    EXPECT_EQ(m_dialogs->takeCalls(), "");
    EXPECT_TRUE(landingIsVisible());

    auto shown = m_app->presenter().showReading(QStringLiteral("b.pdf"), [] { FAIL() << "nobody gave it up"; });
    EXPECT_NE(slowReading(), nullptr);
    shown.reset();
    EXPECT_EQ(slowReading(), nullptr);
}

TEST_F(ImportTest, temporaryFoldersGoWithTheProgramAndAfterACrash) {
    end();
    const QString abandoned = QDir::temp().filePath(QStringLiteral("quillo-import-crashd"));
    ASSERT_TRUE(QDir().mkpath(abandoned + QStringLiteral("/1")));
    QFile lock(abandoned + QStringLiteral("/lock"));
    ASSERT_TRUE(lock.open(QFile::WriteOnly));
    SetUp();
    launch({picture("a.png")});
    ASSERT_TRUE(QTest::qWaitFor([&abandoned] { return !QDir(abandoned).exists(); }, 60'000));
    ASSERT_EQ(leftFolders().size(), 1);
    EXPECT_FALSE(QDir::temp().entryInfoList({leftFolders().constFirst()})[0].permissions() & QFile::ReadOther);
    end();
    EXPECT_EQ(leftFolders(), QStringList());
}
