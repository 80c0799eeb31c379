#include "AppTest.h"

#include "AssistantViewModel.h"
#include "ConverterProcess.h"
#include "PDFEditorWorkspaceView.h"
#include "RecentPageStore.h"
#include "WindowPresenter.h"

#include <QImage>
#include <QProgressDialog>
#include <QPushButton>
#include <QScopeGuard>

class ImportTest : public AppTest {
protected:
    QUrl picture(const QString& name, QSize size = {40, 30}) {
        QImage image(size, QImage::Format_RGB32);
        image.fill(Qt::red);
        EXPECT_TRUE(image.save(path(name)));
        return QUrl::fromLocalFile(path(name));
    }

    QString path(const QString& name) const { return m_folder.filePath(name); }

    /// What imports have left in the temporary folder.
    static QStringList leftFolders() {
        return QDir::temp().entryList({QStringLiteral("quillo-import-*")}, QDir::Dirs | QDir::NoDotAndDotDot);
    }
};

TEST_F(ImportTest, aPictureOpensAsAnUntitledDocumentThatIsSavedBesideIt) {
    const QUrl url = picture(QStringLiteral("Mein Bild.v2.png"));
    launch({url});
    EXPECT_FALSE(landingIsVisible());
    ASSERT_EQ(tabNames(), QStringList{QStringLiteral("Mein Bild.v2")});
    const auto imported = document(0);
    EXPECT_EQ(imported->pdfDocument()->pageCount(), 1);
    EXPECT_TRUE(imported->fileURL().isEmpty() && imported->importedFrom() == url && !imported->isDocumentEdited());
    EXPECT_EQ(m_app->controller().recentDocumentURLs().value(0), url);
    EXPECT_EQ(window()->currentContentView()->workspace()->assistant()->documentName(), QStringLiteral("Mein Bild.v2"));
    EXPECT_EQ(RecentPageStore::pageIndex(m_app->defaults(), url), 0);

    open(url);
    EXPECT_EQ(tabNames().size(), 1) << "it comes forward";
    edit(*imported);
    m_dialogs->saveAnswers = {ScriptedDialogs::SaveAnswer::Cancel};
    m_app->controller().closeDocument(imported);
    EXPECT_EQ(m_dialogs->askedToSave, QStringList{QStringLiteral("Mein Bild.v2")});
    imported->undoManager()->undo();
    m_dialogs->saveLocation = path(QStringLiteral("Mein Bild.v2.pdf"));
    command(QStringLiteral("save"))->trigger();
    settle();
    EXPECT_EQ(m_dialogs->suggestedPaths, QStringList{*m_dialogs->saveLocation});
    EXPECT_EQ(imported->fileURL(), QUrl::fromLocalFile(*m_dialogs->saveLocation));
    EXPECT_TRUE(imported->importedFrom().isEmpty());
    EXPECT_EQ(PDFDocument::fromFile(*m_dialogs->saveLocation)->pageCount(), 1);
    EXPECT_FALSE(QImage(path(QStringLiteral("Mein Bild.v2.png"))).isNull()) << "the picture is as it was";

    open(url);
    EXPECT_EQ(tabNames(), (QStringList{QStringLiteral("Mein Bild.v2.pdf"), QStringLiteral("Mein Bild.v2")}));
}

TEST_F(ImportTest, manyFilesComeInTheirOrderAndOneThatFailsBothersNone) {
    QList<QUrl> urls;
    QStringList names;
    for (int i = 0; i < 12; ++i) {
        names << QStringLiteral("p%1").arg(i);
        urls << picture(names.last() + QStringLiteral(".png"), {10 + i, 10});
    }
    QFile bad(path(QStringLiteral("bad.gif")));
    ASSERT_TRUE(bad.open(QFile::WriteOnly) && bad.write("GIF89a no more") > 0);
    bad.close();
    launch();
    urls.insert(5, QUrl::fromLocalFile(bad.fileName()));
    m_app->delegate().openFiles(urls);
    settle();
    EXPECT_EQ(tabNames(), names);
    EXPECT_EQ(m_dialogs->errors,
              QStringList{QStringLiteral("Couldn't Open “bad.gif” This file couldn't be converted to a PDF.")});
    EXPECT_FALSE(landingIsVisible());
}

TEST_F(ImportTest, everyKindOfTextBecomesPagesWithItsWords) {
    const struct {
        const char* name;
        const char* bytes;
    } files[] = {{"plain.txt", "Dear reader"},
                 {"source.MD", "# Dear reader"},
                 {"page.html", "<p>Dear <b>reader</b></p>"},
                 {"old.htm", "Dear reader"},
                 {"letter.rtf", "{\\rtf1\\ansi Dear reader}"},
                 {"memo.rtfd/TXT.rtf", "{\\rtf1\\ansi Dear reader}"}};
    ASSERT_TRUE(QDir(m_folder.path()).mkdir(QStringLiteral("memo.rtfd")));
    QList<QUrl> urls;
    for (const auto& [name, bytes] : files) {
        QFile file(path(QString::fromLatin1(name)));
        ASSERT_TRUE(file.open(QFile::WriteOnly) && file.write(bytes) > 0);
        urls << QUrl::fromLocalFile(path(QString::fromLatin1(name).section(u'/', 0, 0)));
    }
    launch(urls);
    EXPECT_EQ(m_dialogs->errors, QStringList());
    ASSERT_EQ(m_app->controller().documents().size(), urls.size());
    for (std::size_t i = 0; i < m_app->controller().documents().size(); ++i)
        EXPECT_TRUE(document(i)->pdfDocument()->string().contains(QStringLiteral("Dear reader")))
            << document(i)->displayName().toStdString();
}

TEST_F(ImportTest, aFileTakesThePlaceOfAnEmptyTab) {
    launch({file(QStringLiteral("a.pdf"))});
    m_app->controller().newDocument();
    ASSERT_EQ(tabNames().size(), 2);
    const QUrl bad = QUrl::fromLocalFile(path(QStringLiteral("none.png")));
    window()->currentContentView()->openInPlace(bad);
    settle();
    EXPECT_EQ(tabNames(), (QStringList{QStringLiteral("a.pdf"), QStringLiteral("Untitled")}));
    window()->currentContentView()->openInPlace(picture(QStringLiteral("b.bmp")));
    settle();
    EXPECT_EQ(tabNames(), (QStringList{QStringLiteral("a.pdf"), QStringLiteral("b")}));
}

TEST_F(ImportTest, aSlowFileCanBeGivenUp) {
    const auto restore = qScopeGuard([] { ConverterProcess::setCommand({}); });
    ConverterProcess::setCommand({"/bin/sh", "-c", "sleep 1000"});
    m_app->launch({picture(QStringLiteral("slow.png")), picture(QStringLiteral("slower.png"))});
    for (int file = 0; file < 2; ++file) {
        const auto shown = [] {
            const QWidgetList windows = QApplication::topLevelWidgets();
            const auto found = std::find_if(windows.begin(), windows.end(), [](const QWidget* each) {
                return each->isVisible() && each->objectName() == QLatin1String("slowReading");
            });
            return found != windows.end() ? qobject_cast<QProgressDialog*>(*found) : nullptr;
        };
        ASSERT_TRUE(QTest::qWaitFor([&shown] { return shown() != nullptr; }, 60'000));
        EXPECT_FALSE(landingIsVisible());
        shown()->findChild<QPushButton*>()->click();
    }
    settle();
    EXPECT_TRUE(m_app->controller().documents().empty() && m_dialogs->errors.isEmpty());
    EXPECT_TRUE(landingIsVisible());
}

TEST_F(ImportTest, temporaryFoldersGoWithTheProgramAndAfterACrash) {
    m_app.reset();
    const QString abandoned = QDir::temp().filePath(QStringLiteral("quillo-import-crashd"));
    ASSERT_TRUE(QDir().mkpath(abandoned + QStringLiteral("/1")));
    QFile lock(abandoned + QStringLiteral("/lock"));
    ASSERT_TRUE(lock.open(QFile::WriteOnly));
    auto dialogs = std::make_unique<ScriptedDialogs>();
    m_dialogs = dialogs.get();
    m_app = std::make_unique<QuilloApp>(std::move(dialogs));
    launch({picture(QStringLiteral("a.png"))});
    ASSERT_TRUE(QTest::qWaitFor([&abandoned] { return !QDir(abandoned).exists(); }, 60'000));
    ASSERT_EQ(leftFolders().size(), 1);
    EXPECT_FALSE(QDir::temp().entryInfoList({leftFolders().constFirst()})[0].permissions() & QFile::ReadOther);
    m_app.reset();
    EXPECT_EQ(leftFolders(), QStringList());
}
