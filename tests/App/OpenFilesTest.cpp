#include "AppTest.h"

#include "PreviewWindowController.h"
#include "RecentPageStore.h"
#include "RecentScaleStore.h"
#include "UnlockDocumentView.h"
#include "WindowPresenter.h"

#include <QDir>
#include <QLabel>
#include <QPushButton>

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
    const struct {
        QUrl url;
        const char* says;
    } cases[] = {
        {QUrl::fromLocalFile(m_folder.filePath(QStringLiteral("missing.pdf"))), "doesn't exist"},
        {QUrl::fromLocalFile(m_folder.filePath(QStringLiteral("missing"))), "There is no file “missing”."},
        {bytes(QStringLiteral("empty.pdf"), {}), "“empty.pdf” couldn't be opened."},
        {bytes(QStringLiteral("fake.pdf"), QByteArray("no pdf ").repeated(500)), "“fake.pdf” couldn't be opened."},
        {bytes(QStringLiteral("header.pdf"), "%PDF-1.7\n"), "“header.pdf” couldn't be opened."},
        {bytes(QStringLiteral("notes.docx"), "PK"),
         "Couldn't Open “notes.docx” This file couldn't be converted to a PDF."},
        {bytes(QStringLiteral("words.jpg"), "Dear reader"),
         "Couldn't Open “words.jpg” This file couldn't be converted to a PDF."},
        {QUrl::fromLocalFile(m_folder.filePath(QStringLiteral("gone.png"))),
         "Couldn't Open “gone.png” The file doesn't"},
        {QUrl(QStringLiteral("https://example.org/a.pdf")), "Only files on this computer"},
        {QUrl(QStringLiteral("https://example.org/a")), "isn't a file on this computer"},
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

TEST_F(OpenFilesTest, whatIsNotConvertedGetsAWindowOfItsOwn) {
    ASSERT_TRUE(QDir(m_folder.path()).mkpath(QStringLiteral("papers.pdf")));
    launch({bytes(QStringLiteral("table.xlsx"), "junk"), bytes(QStringLiteral("<b>x.zip"), "PK"),
            QUrl::fromLocalFile(m_folder.filePath(QStringLiteral("papers.pdf")))});
    const auto& windows = PreviewWindowController::openControllers();
    ASSERT_EQ(windows.size(), 3U);
    EXPECT_FALSE(landingIsVisible());
    EXPECT_EQ(windows[0]->window()->windowTitle(), QStringLiteral("table.xlsx"));
    EXPECT_NE(windows[0]->window()->findChild<QWidget*>(QStringLiteral("previewAskButton")), nullptr);
    for (const std::size_t i : {1U, 2U}) {
        EXPECT_EQ(windows[i]->window()->findChild<QWidget*>(QStringLiteral("previewAskButton")), nullptr);
        EXPECT_EQ(windows[i]->window()->findChild<QLabel*>(QStringLiteral("reason"))->text(),
                  QStringLiteral("Quillo doesn’t support previewing this file type yet."));
    }
    EXPECT_EQ(windows[1]->window()->findChild<QLabel*>(QStringLiteral("heading"))->text(),
              QStringLiteral("Can’t Preview “<b>x.zip”"));
    for (const std::size_t left : {2U, 1U, 0U}) {
        windows.front()->window()->close();
        settle();
        EXPECT_EQ(windows.size(), left);
        EXPECT_EQ(landingIsVisible(), left == 0);
    }
    open(bytes(QStringLiteral("other.zip"), "PK"));
    EXPECT_TRUE(landingIsVisible()); // it goes for documents only
}

TEST_F(OpenFilesTest, goodFilesOpenBetweenBadOnesInTheirOrder) {
    launch({file(QStringLiteral("b.pdf")), bytes(QStringLiteral("bad.pdf"), "x"),
            file(QStringLiteral("locked.PDF"), {.password = "key"}),
            file(QStringLiteral("repaired.pdf"), {.isDamaged = true}), file(QStringLiteral("a.pdf"))});
    EXPECT_EQ(tabNames(), (QStringList{QStringLiteral("b.pdf"), QStringLiteral("locked.PDF"),
                                       QStringLiteral("repaired.pdf"), QStringLiteral("a.pdf")}));
    EXPECT_EQ(m_dialogs->errors.size(), 1);
    EXPECT_NE(window()->contentViews().at(1)->findChild<UnlockDocumentView*>(), nullptr);
}

TEST_F(OpenFilesTest, anotherStartHandsItsFilesOver) {
    launch();
    const QUrl first = file(QStringLiteral("100% ä.pdf"));
    const QUrl second = file(QStringLiteral("b#1.pdf"));
    m_app->openFromOtherStart({first.toString(QUrl::FullyEncoded), second.toString(QUrl::FullyEncoded)}, {});
    settle();
    EXPECT_EQ(tabNames(), (QStringList{QStringLiteral("100% ä.pdf"), QStringLiteral("b#1.pdf")}));
    EXPECT_FALSE(landingIsVisible());
}

TEST_F(OpenFilesTest, clearingTheRecentFilesForgetsTheirPagesAndScales) {
    const QUrl url = file(QStringLiteral("a.pdf"));
    RecentPageStore::setPageIndex(m_app->defaults(), 1, url);
    RecentScaleStore::setScale(m_app->defaults(), 1.5, url);
    m_app->controller().clearRecentDocuments();
    EXPECT_EQ(RecentPageStore::pageIndex(m_app->defaults(), url), std::nullopt);
    EXPECT_EQ(RecentScaleStore::scale(m_app->defaults(), url), std::nullopt);
}

TEST_F(OpenFilesTest, aFileThatTakesLongIsShownUntilItIsThereOrGivenUp) {
    WindowPresenter presenter(*m_dialogs);
    int givenUp = 0;
    const auto giveUp = [&givenUp] { ++givenUp; };
    const auto dialog = [] {
        QWidgetList widgets = QApplication::topLevelWidgets();
        widgets.removeIf([](const QWidget* widget) {
            return widget->objectName() != QStringLiteral("slowReading") || !widget->isVisible();
        });
        return widgets.value(0);
    };
    auto shown = presenter.showReading(QStringLiteral("<b>a</b>.pdf"), giveUp);
    ASSERT_NE(dialog(), nullptr);
    EXPECT_FALSE(dialog()->isModal());
    EXPECT_EQ(dialog()->findChild<QLabel*>()->text(), QStringLiteral("Opening “<b>a</b>.pdf”…"));
    EXPECT_EQ(dialog()->findChild<QLabel*>()->textFormat(), Qt::PlainText);
    QTest::mouseClick(dialog()->findChild<QPushButton*>(), Qt::LeftButton);
    EXPECT_EQ(givenUp, 1);
    shown = presenter.showReading(QStringLiteral("b.pdf"), giveUp);
    EXPECT_NE(dialog(), nullptr);
    shown.reset();
    EXPECT_EQ(dialog(), nullptr);
    EXPECT_EQ(givenUp, 1);
}
